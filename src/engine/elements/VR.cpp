#include "engine/elements/VR.h"

#include "support/MyException.h"

namespace DicomEngine {

VR::VR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement, std::uint32_t declaredLength)
    : group(tagGroup), element(tagElement), vrCode(code), length(declaredLength) {}

VR::~VR() = default;

std::string VR::ToString() const {
  const std::string_view code = vrCode.View();
  return halvorine::FormatBounded(64, "(%04X, %04X) VR=%.*s Length=%u<=>0x%X", group, element,
                                  static_cast<int>(code.size()), code.data(), length, length);
}

std::uint32_t VR::GetLength() const { return length; }

void VR::Write(BufferWriter& writer) {
  writer.WriteUnsignedShort(group);
  writer.WriteUnsignedShort(element);
  writer.WriteVRCode(group, vrCode.View());
  const std::uint32_t lengthPosition = writer.GetCursor();
  writer.WriteLength(group, vrCode.View(), length);
  const std::uint32_t valueStart = writer.GetCursor();
  WriteValue(writer);
  if (length == kUndefinedLength) return;
  const std::uint32_t end = writer.GetCursor();
  length = end - valueStart;
  writer.SetCursor(lengthPosition);
  writer.WriteLength(group, vrCode.View(), length);
  writer.SetCursor(end);
}

void VR::PadLengthToEven() {
  if (length % 2 != 0) ++length;
}

}  // namespace DicomEngine
