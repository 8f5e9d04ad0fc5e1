// Unsigned 16-bit numbers, code "US".
#ifndef HALVORINE_ENGINE_ELEMENTS_UNSIGNEDSHORTVR_H
#define HALVORINE_ENGINE_ELEMENTS_UNSIGNEDSHORTVR_H

#include <cstdint>

#include "engine/elements/VRNumeric.h"

namespace DicomEngine {

class UnsignedShortVR final : public VRNumeric<std::uint16_t> {
 public:
  UnsignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                  std::uint32_t declaredLength, NumberList<std::uint16_t> numbers);
  // The form of the record builders: one number, with the length 2.
  UnsignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                  std::uint32_t declaredLength, std::uint16_t value);

  // Each number in 16 bits when the code is "US"; else nothing.
  void WriteValue(BufferWriter& writer) override;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_UNSIGNEDSHORTVR_H
