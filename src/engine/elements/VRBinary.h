// A binary value of defined length: codes "OB", "OT", "OW" and "UN". The bytes are shown by
// their count only.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRBINARY_H
#define HALVORINE_ENGINE_ELEMENTS_VRBINARY_H

#include <cstdint>
#include <memory>
#include <string>

#include "engine/elements/PixelDataContainer.h"
#include "engine/elements/VR.h"

namespace DicomEngine {

class VRBinary : public VR, public PixelDataContainer {
 public:
  // Takes over the block, which holds length bytes or is null.
  VRBinary(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
           std::uint32_t declaredLength, std::unique_ptr<std::uint8_t[]> data);

  // The header, then " Value=BINARY Length=[%d<=>0x%x]" with the length twice.
  std::string ToString() const override;
  // Exactly length bytes: an odd length stays odd, with no pad byte. Without a block they are
  // zero bytes.
  void WriteValue(BufferWriter& writer) override;
  void GetPixelData(std::unique_ptr<std::uint8_t[]>* data, std::uint32_t* count) const override;

  // The block itself, null when there is none; the element keeps it.
  const std::uint8_t* GetData() const { return data_.get(); }

 private:
  std::unique_ptr<std::uint8_t[]> data_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRBINARY_H
