#include "engine/elements/SignedShortVR.h"

namespace DicomEngine {

SignedShortVR::SignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                             std::uint32_t declaredLength, NumberList<std::int16_t> numbers)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, std::move(numbers)) {}

void SignedShortVR::WriteValue(BufferWriter& writer) { WriteValuesAs<std::int16_t>(writer, "SS"); }

}  // namespace DicomEngine
