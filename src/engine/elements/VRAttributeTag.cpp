#include "engine/elements/VRAttributeTag.h"

#include "support/MyException.h"

namespace DicomEngine {

VRAttributeTag::VRAttributeTag(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                               std::uint32_t declaredLength, std::vector<AttributeTag> tags)
    : VR(code, tagGroup, tagElement, declaredLength), tags_(std::move(tags)) {}

std::string VRAttributeTag::ToString() const {
  std::string text = VR::ToString();
  for (const AttributeTag& tag : tags_) {
    text += halvorine::FormatBounded(64, "Value=[(%x, %x)]\r\n", tag.group, tag.element);
  }
  return text;
}

void VRAttributeTag::WriteValue(BufferWriter& writer) {
  for (const AttributeTag& tag : tags_) {
    writer.WriteUnsignedShort(tag.group);
    writer.WriteUnsignedShort(tag.element);
  }
}

}  // namespace DicomEngine
