#include "engine/elements/DoubleVR.h"

namespace DicomEngine {

DoubleVR::DoubleVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                   std::uint32_t declaredLength, NumberList<double> numbers)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, std::move(numbers)) {}

void DoubleVR::WriteValue(BufferWriter& writer) {
  WriteValuesAs<float>(writer, "FL");
  WriteValuesAs<double>(writer, "FD");
}

}  // namespace DicomEngine
