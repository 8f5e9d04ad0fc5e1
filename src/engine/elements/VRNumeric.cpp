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

}  // namespace

template <typename Number>
VRNumeric<Number>::VRNumeric(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                             std::uint32_t declaredLength, NumberList<Number> numbers)
    : VR(code, tagGroup, tagElement, declaredLength), values(std::move(numbers)) {}

template <typename Number>
std::string VRNumeric<Number>::ToString() const {
  std::string text = VR::ToString();
  for (const Number value : values) {
    text += FormatValue(value);
    if (values.size() > 1) text += ';';
  }
  return text;
}

template class VRNumeric<std::int16_t>;
template class VRNumeric<std::uint16_t>;
template class VRNumeric<std::int32_t>;
template class VRNumeric<std::uint32_t>;
template class VRNumeric<double>;

}  // namespace DicomEngine
