// A list of attribute tags, code "AT".
#ifndef HALVORINE_ENGINE_ELEMENTS_VRATTRIBUTETAG_H
#define HALVORINE_ENGINE_ELEMENTS_VRATTRIBUTETAG_H

#include <cstdint>
#include <string>
#include <vector>

#include "engine/elements/VR.h"

namespace DicomEngine {

struct AttributeTag {
  std::uint16_t group = 0;
  std::uint16_t element = 0;
};

class VRAttributeTag final : public VR {
 public:
  VRAttributeTag(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                 std::uint32_t declaredLength, std::vector<AttributeTag> tags);

  // The header, then "Value=[(%x, %x)]\r\n" for each tag, with no blank before the first.
  std::string ToString() const override;
  // Group, then element, 16 bits each, for every tag.
  void WriteValue(BufferWriter& writer) override;

 private:
  std::vector<AttributeTag> tags_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRATTRIBUTETAG_H
