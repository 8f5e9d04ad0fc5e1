#include "engine/elements/UnsignedIntegerVR.h"

namespace DicomEngine {

UnsignedIntegerVR::UnsignedIntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                                     std::uint32_t declaredLength,
                                     NumberList<std::uint32_t> numbers)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, std::move(numbers)) {}

UnsignedIntegerVR::UnsignedIntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                                     std::uint32_t declaredLength, std::uint32_t value)
    : UnsignedIntegerVR(code, tagGroup, tagElement, declaredLength,
                        NumberList<std::uint32_t>{value}) {}

void UnsignedIntegerVR::WriteValue(BufferWriter& writer) {
  WriteValuesAs<std::uint32_t>(writer, "UL");
}

}  // namespace DicomEngine
