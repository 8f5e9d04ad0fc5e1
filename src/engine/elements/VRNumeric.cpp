#include "engine/elements/VRNumeric.h"

#include <type_traits>

#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr std::size_t kPieceSize = 64;

// Integers print through int: a signed short widens with its sign, an unsigned one without, and
// an unsigned long from 0x80000000 up prints negative on the left.
template <typename Number>
std::string FormatValue(Number value) {
  if constexpr (std::is_floating_point_v<Number>) {
    return halvorine::FormatBounded(kPieceSize, " Value=[%f<=>0x%f]", value, value);
  } else {
    const auto widened = static_cast<std::int32_t>(value);
    return halvorine::FormatBounded(kPieceSize, " Value=[%d<=>0x%X]", widened,
                                    static_cast<std::uint32_t>(widened));
  }
}

// One number at the width of its code: 16 bits for SS and US, a float for FL, a double for FD,
// else 32 bits.
template <typename Number>
void WriteNumber(BufferWriter& writer, std::string_view code, Number value) {
  if (code == "SS" || code == "US") {
    writer.WriteUnsignedShort(static_cast<std::uint16_t>(value));
  } else if (code == "FL") {
    writer.WriteFloat(static_cast<float>(value));
  } else if (code == "FD") {
    writer.WriteDouble(static_cast<double>(value));
  } else {
    writer.WriteUnsignedLong(static_cast<std::uint32_t>(value));
  }
}

}  // namespace

template <typename Number, std::uint16_t... kCodes>
VRNumeric<Number, kCodes...>::VRNumeric(VRCode code, std::uint16_t tagGroup,
                                        std::uint16_t tagElement, std::uint32_t declaredLength,
                                        NumberList<Number> numbers)
    : VR(code, tagGroup, tagElement, declaredLength), values(std::move(numbers)) {}

template <typename Number, std::uint16_t... kCodes>
VRNumeric<Number, kCodes...>::VRNumeric(VRCode code, std::uint16_t tagGroup,
                                        std::uint16_t tagElement, std::uint32_t declaredLength,
                                        Number value)
    : VRNumeric(code, tagGroup, tagElement, declaredLength, NumberList<Number>{value}) {}

template <typename Number, std::uint16_t... kCodes>
std::string VRNumeric<Number, kCodes...>::ToString() const {
  std::string text = VR::ToString();
  for (const Number value : values) {
    text += FormatValue(value);
    if (values.size() > 1) text += ';';
  }
  return text;
}

template <typename Number, std::uint16_t... kCodes>
void VRNumeric<Number, kCodes...>::WriteValue(BufferWriter& writer) {
  const std::string_view code = vrCode.View();
  if (code.size() != 2 || ((CodeNumber(code) != kCodes) && ...)) return;
  for (const Number value : values) WriteNumber(writer, code, value);
}

template class VRNumeric<std::int32_t, CodeNumber("SL")>;
template class VRNumeric<std::uint32_t, CodeNumber("UL")>;
template class VRNumeric<std::int16_t, CodeNumber("SS")>;
template class VRNumeric<std::uint16_t, CodeNumber("US")>;
template class VRNumeric<double, CodeNumber("FL"), CodeNumber("FD")>;

}  // namespace DicomEngine
