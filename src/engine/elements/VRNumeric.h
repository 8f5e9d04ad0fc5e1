// The numeric family: an element whose value is a list of numbers of one type. One class template
// makes all five classes; they differ in the number type and in the codes that they write:
//
//   IntegerVR          SL  signed 32-bit
//   UnsignedIntegerVR  UL  unsigned 32-bit; the first number of a directory offset attribute is
//                          the offset itself
//   SignedShortVR      SS  signed 16-bit
//   UnsignedShortVR    US  unsigned 16-bit
//   DoubleVR           FL  held as 64 bits, narrowed to 32 when written
//                      FD  64 bits
//
// The list, not the declared length, decides how many bytes are written. Under a code that isn't
// its class's, an element writes nothing, and so ends up with the length 0.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H
#define HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/elements/NumberList.h"
#include "engine/elements/VR.h"

namespace DicomEngine {

// The two letters of a code as one number, for template arguments.
constexpr std::uint16_t CodeNumber(std::string_view code) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(code[0]) << 8 |
                                    static_cast<unsigned char>(code[1]));
}

template <typename Number, std::uint16_t... kCodes>
class VRNumeric final : public VR {
 public:
  VRNumeric(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
            std::uint32_t declaredLength, NumberList<Number> numbers);
  // The form of the record builders: one number.
  VRNumeric(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
            std::uint32_t declaredLength, Number value);

  // For each number " Value=[%d<=>0x%X]" (" Value=[%f<=>0x%f]" for floating point), and ";"
  // behind each when there are several. Each piece is cut at 64 bytes.
  std::string ToString() const override;
  void WriteValue(BufferWriter& writer) override;

  NumberList<Number> values;
};

using IntegerVR = VRNumeric<std::int32_t, CodeNumber("SL")>;
using UnsignedIntegerVR = VRNumeric<std::uint32_t, CodeNumber("UL")>;
using SignedShortVR = VRNumeric<std::int16_t, CodeNumber("SS")>;
using UnsignedShortVR = VRNumeric<std::uint16_t, CodeNumber("US")>;
using DoubleVR = VRNumeric<double, CodeNumber("FL"), CodeNumber("FD")>;

extern template class VRNumeric<std::int32_t, CodeNumber("SL")>;
extern template class VRNumeric<std::uint32_t, CodeNumber("UL")>;
extern template class VRNumeric<std::int16_t, CodeNumber("SS")>;
extern template class VRNumeric<std::uint16_t, CodeNumber("US")>;
extern template class VRNumeric<double, CodeNumber("FL"), CodeNumber("FD")>;

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H
