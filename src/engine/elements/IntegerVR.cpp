#include "engine/elements/IntegerVR.h"

namespace DicomEngine {

IntegerVR::IntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                     std::uint32_t declaredLength, NumberList<std::int32_t> numbers)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, std::move(numbers)) {}

void IntegerVR::WriteValue(BufferWriter& writer) { WriteValuesAs<std::int32_t>(writer, "SL"); }

}  // namespace DicomEngine
