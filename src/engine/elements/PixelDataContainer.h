// What asks an element for its pixel bytes, whether they lie in one block (VRBinary) or in the
// fragments of encapsulated pixel data (VRSequence).
#ifndef HALVORINE_ENGINE_ELEMENTS_PIXELDATACONTAINER_H
#define HALVORINE_ENGINE_ELEMENTS_PIXELDATACONTAINER_H

#include <cstdint>
#include <memory>

namespace DicomEngine {

class PixelDataContainer {
 public:
  virtual ~PixelDataContainer() = default;

  // A copy of the bytes into a new block that the caller owns, null when there are none, and
  // their count. Raises "The Pixel data buffer pointer is NULL." when either pointer is null.
  virtual void GetPixelData(std::unique_ptr<std::uint8_t[]>* data, std::uint32_t* count) const = 0;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_PIXELDATACONTAINER_H
