#include "engine/elements/UnsignedShortVR.h"

namespace DicomEngine {

UnsignedShortVR::UnsignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                                 std::uint32_t declaredLength, NumberList<std::uint16_t> numbers)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, std::move(numbers)) {}

UnsignedShortVR::UnsignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                                 std::uint32_t declaredLength, std::uint16_t value)
    : UnsignedShortVR(code, tagGroup, tagElement, declaredLength,
                      NumberList<std::uint16_t>{value}) {}

void UnsignedShortVR::WriteValue(BufferWriter& writer) {
  WriteValuesAs<std::uint16_t>(writer, "US");
}

}  // namespace DicomEngine
