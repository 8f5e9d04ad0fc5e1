// Unsigned 32-bit numbers, code "UL". The first number of a directory offset
// attribute is the offset itself.
#ifndef HALVORINE_ENGINE_ELEMENTS_UNSIGNEDINTEGERVR_H
#define HALVORINE_ENGINE_ELEMENTS_UNSIGNEDINTEGERVR_H

#include <cstdint>

#include "engine/elements/VRNumeric.h"

namespace DicomEngine {

class UnsignedIntegerVR final : public VRNumeric<std::uint32_t> {
 public:
  UnsignedIntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                    std::uint32_t declaredLength, NumberList<std::uint32_t> numbers);
  // The form of the record builders: one number, with the length 4.
  UnsignedIntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                    std::uint32_t declaredLength, std::uint32_t value);

  // Each number in 32 bits when the code is "UL"; else nothing.
  void WriteValue(BufferWriter& writer) override;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_UNSIGNEDINTEGERVR_H
