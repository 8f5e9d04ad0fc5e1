// Floating point numbers, held as 64 bits for both codes "FD" and "FL".
#ifndef HALVORINE_ENGINE_ELEMENTS_DOUBLEVR_H
#define HALVORINE_ENGINE_ELEMENTS_DOUBLEVR_H

#include <cstdint>

#include "engine/elements/VRNumeric.h"

namespace DicomEngine {

class DoubleVR final : public VRNumeric<double> {
 public:
  DoubleVR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
           std::uint32_t declaredLength, NumberList<double> numbers);

  // Each number narrowed to 32 bits under "FL", in 64 bits under "FD"; nothing under any other.
  void WriteValue(BufferWriter& writer) override;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_DOUBLEVR_H
