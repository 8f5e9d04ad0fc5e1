#include "engine/elements/VRSequenceItem.h"

namespace DicomEngine {

VRSequenceItem::VRSequenceItem(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                               std::uint32_t declaredLength)
    : VR(code, tagGroup, tagElement, declaredLength) {}

std::string VRSequenceItem::ToString() const { return WithElements(VR::ToString()); }

void VRSequenceItem::WriteValue(BufferWriter& writer) { WriteElements(writer, nullptr); }

}  // namespace DicomEngine
