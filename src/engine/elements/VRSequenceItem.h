// An item of a sequence, tag (FFFE,E000), and also every delimiter: (FFFE,E00D) ends an
// undefined-length item, (FFFE,E0DD) an undefined-length sequence. Its code is empty. A parsed
// tree keeps its delimiters as entries of the lists, so they are written like any entry.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRSEQUENCEITEM_H
#define HALVORINE_ENGINE_ELEMENTS_VRSEQUENCEITEM_H

#include <cstdint>
#include <string>

#include "engine/elements/VR.h"
#include "engine/elements/VRContainer.h"

namespace DicomEngine {

inline constexpr std::uint16_t kItem = 0xE000;
inline constexpr std::uint16_t kItemDelimiter = 0xE00D;
inline constexpr std::uint16_t kSequenceDelimiter = 0xE0DD;

// GetLength differs by view: as a VR the item's own length, as a VRContainer the sum over its
// elements.
class VRSequenceItem final : public VR, public VRContainer {
 public:
  VRSequenceItem(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                 std::uint32_t declaredLength);

  // The header; when the item holds elements, "\r\n" and their texts.
  std::string ToString() const override;
  // The elements, each with its header.
  void WriteValue(BufferWriter& writer) override;

  using VR::Write;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRSEQUENCEITEM_H
