#include "engine/elements/VRBinarySequenceItem.h"

namespace DicomEngine {

VRBinarySequenceItem::VRBinarySequenceItem(std::uint16_t tagGroup, std::uint16_t tagElement,
                                           std::uint32_t declaredLength,
                                           std::unique_ptr<std::uint8_t[]> data)
    : VRBinary(VRCode(), tagGroup, tagElement, declaredLength, std::move(data)) {}

}  // namespace DicomEngine
