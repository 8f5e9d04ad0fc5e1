// Signed 16-bit numbers, code "SS".
#ifndef HALVORINE_ENGINE_ELEMENTS_SIGNEDSHORTVR_H
#define HALVORINE_ENGINE_ELEMENTS_SIGNEDSHORTVR_H

#include <cstdint>

#include "engine/elements/VRNumeric.h"

namespace DicomEngine {

class SignedShortVR final : public VRNumeric<std::int16_t> {
 public:
  SignedShortVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                std::uint32_t declaredLength, NumberList<std::int16_t> numbers);

  // Each number in 16 bits when the code is "SS"; else nothing.
  void WriteValue(BufferWriter& writer) override;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_SIGNEDSHORTVR_H
