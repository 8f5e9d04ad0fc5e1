// A UID, code "UI": a text padded with NUL bytes instead of blanks.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H
#define HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H

#include <cstdint>
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

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRUNIQUEIDENTIFIER_H
