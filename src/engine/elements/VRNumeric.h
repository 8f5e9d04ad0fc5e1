// The numeric family: an element whose value is a list of numbers of one type. The list, not the
// declared length, decides how many bytes are written.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H
#define HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "engine/elements/NumberList.h"
#include "engine/elements/VR.h"

namespace DicomEngine {

template <typename Number>
class VRNumeric : public VR {
 public:
  // For each number " Value=[%d<=>0x%X]" (" Value=[%f<=>0x%f]" for floating point), and ";"
  // behind each when there are several. Each piece is cut at 64 bytes.
  std::string ToString() const override;

  NumberList<Number> values;

 protected:
  VRNumeric(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
            std::uint32_t declaredLength, NumberList<Number> numbers);

  // Every number at the given width, when vrCode is expectedCode; otherwise nothing, so that an
  // element whose code doesn't match its class ends up with the length 0.
  template <typename Encoded>
  void WriteValuesAs(BufferWriter& writer, std::string_view expectedCode) const;
};

template <typename Number>
template <typename Encoded>
void VRNumeric<Number>::WriteValuesAs(BufferWriter& writer, std::string_view expectedCode) const {
  if (vrCode != expectedCode) return;
  for (const Number value : values) {
    if constexpr (sizeof(Encoded) == 2) {
      writer.WriteUnsignedShort(static_cast<std::uint16_t>(value));
    } else if constexpr (std::is_same_v<Encoded, float>) {
      writer.WriteFloat(static_cast<float>(value));
    } else if constexpr (std::is_same_v<Encoded, double>) {
      writer.WriteDouble(value);
    } else {
      writer.WriteUnsignedLong(static_cast<std::uint32_t>(value));
    }
  }
}

extern template class VRNumeric<std::int16_t>;
extern template class VRNumeric<std::uint16_t>;
extern template class VRNumeric<std::int32_t>;
extern template class VRNumeric<std::uint32_t>;
extern template class VRNumeric<double>;

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRNUMERIC_H
