#include "engine/elements/VRString.h"

namespace DicomEngine {

VRString::VRString(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                   std::uint32_t declaredLength, std::string value)
    : VR(code, tagGroup, tagElement, declaredLength), value_(std::move(value)) {}

std::string VRString::ToString() const {
  std::string text = VR::ToString();
  text.append(" Value=[").append(value_).append("]");
  return text;
}

void VRString::WriteValue(BufferWriter& writer) {
  PadLengthToEven();
  writer.WriteText(value_, length);
}

void VRString::SetValue(std::string value) {
  value_ = std::move(value);
  length = static_cast<std::uint32_t>(value_.size());
  PadLengthToEven();
}

}  // namespace DicomEngine
