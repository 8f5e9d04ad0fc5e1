// Signed 32-bit numbers, code "SL".
#ifndef HALVORINE_ENGINE_ELEMENTS_INTEGERVR_H
#define HALVORINE_ENGINE_ELEMENTS_INTEGERVR_H

#include <cstdint>

#include "engine/elements/VRNumeric.h"

namespace DicomEngine {

class IntegerVR final : public VRNumeric<std::int32_t> {
 public:
  IntegerVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
            std::uint32_t declaredLength, NumberList<std::int32_t> numbers);

  // Each number in 32 bits when the code is "SL"; else nothing.
  void WriteValue(BufferWriter& writer) override;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_INTEGERVR_H
