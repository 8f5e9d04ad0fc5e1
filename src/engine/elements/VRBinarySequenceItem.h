// One fragment of encapsulated pixel data, tag (FFFE,E000), with no code. The first fragment of a
// sequence is the offset table.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRBINARYSEQUENCEITEM_H
#define HALVORINE_ENGINE_ELEMENTS_VRBINARYSEQUENCEITEM_H

#include <cstdint>
#include <memory>

#include "engine/elements/VRBinary.h"

namespace DicomEngine {

class VRBinarySequenceItem final : public VRBinary {
 public:
  // Takes over the block, which holds length bytes or is null.
  VRBinarySequenceItem(std::uint16_t tagGroup, std::uint16_t tagElement,
                       std::uint32_t declaredLength, std::unique_ptr<std::uint8_t[]> data);
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRBINARYSEQUENCEITEM_H
