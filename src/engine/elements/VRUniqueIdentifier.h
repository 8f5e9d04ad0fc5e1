// A UID, code "UI": a text padded with NUL bytes instead of blanks.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H
#define HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H

#include <cstdint>
#include <memory>
#include <string>

#include "engine/elements/VRString.h"

namespace DicomEngine {

class VRUniqueIdentifier final : public VRString {
 public:
  VRUniqueIdentifier(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                     std::uint32_t declaredLength, std::string value);

  // Makes the length even, then writes the text up to its first NUL, filled with NUL bytes.
  void WriteValue(BufferWriter& writer) override;
};

// A text element whose length is its text's: a VRUniqueIdentifier for "UI", which pads with a
// NUL, else a VRString, which pads with a blank.
std::unique_ptr<VR> MakeText(VRCode code, std::uint16_t group, std::uint16_t element,
                             std::string value);

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H
