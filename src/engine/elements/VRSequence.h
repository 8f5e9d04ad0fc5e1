// A sequence: code "SQ", or a binary code with an undefined length. One element in three roles:
// as a VR it has a tag and a length and is written like any element; as a VRContainer it holds
// its items in file order (VRSequenceItem, or VRBinarySequenceItem fragments of encapsulated
// pixel data), with the sequence delimiter last when the file had one; as a PixelDataContainer
// it gives its fragments as one block.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRSEQUENCE_H
#define HALVORINE_ENGINE_ELEMENTS_VRSEQUENCE_H

#include <cstdint>
#include <memory>
#include <string>

#include "engine/elements/PixelDataContainer.h"
#include "engine/elements/VR.h"
#include "engine/elements/VRContainer.h"

namespace DicomEngine {

class VRSequence final : public VR, public VRContainer, public PixelDataContainer {
 public:
  VRSequence(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
             std::uint32_t declaredLength);

  // The header; when the sequence holds items, "\r\n" and their texts.
  std::string ToString() const override;
  // The sum of the items' own length fields, in both views; the sequence's length field, and
  // the items' headers, don't count.
  std::uint32_t GetLength() const override;
  // The items, each with its header.
  void WriteValue(BufferWriter& writer) override;
  // The blocks of the VRBinarySequenceItem entries, offset table included, one behind the other
  // in a block of GetLength() bytes; other items are passed over.
  void GetPixelData(std::unique_ptr<std::uint8_t[]>* data, std::uint32_t* count) const override;

  using VR::Write;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRSEQUENCE_H
