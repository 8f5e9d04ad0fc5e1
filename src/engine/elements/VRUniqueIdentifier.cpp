#include "engine/elements/VRUniqueIdentifier.h"

namespace DicomEngine {

VRUniqueIdentifier::VRUniqueIdentifier(VRCode code, std::uint16_t tagGroup,
                                       std::uint16_t tagElement, std::uint32_t declaredLength,
                                       std::string value)
    : VRString(code, tagGroup, tagElement, declaredLength, std::move(value)) {}

void VRUniqueIdentifier::WriteValue(BufferWriter& writer) {
  PadLengthToEven();
  writer.WriteUid(GetValue(), length);
}

std::unique_ptr<VR> MakeText(VRCode code, std::uint16_t group, std::uint16_t element,
                             std::string value) {
  const auto length = static_cast<std::uint32_t>(value.size());
  if (code == "UI") {
    return std::make_unique<VRUniqueIdentifier>(code, group, element, length, std::move(value));
  }
  return std::make_unique<VRString>(code, group, element, length, std::move(value));
}

}  // namespace DicomEngine
