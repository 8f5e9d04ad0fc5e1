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

}  // namespace DicomEngine
