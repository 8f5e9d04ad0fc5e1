// A whole data set, the root of an element tree; it lives inside one operation.
#ifndef HALVORINE_ENGINE_ELEMENTS_DICOMDATA_H
#define HALVORINE_ENGINE_ELEMENTS_DICOMDATA_H

#include "engine/elements/VRContainer.h"

namespace DicomEngine {

class DicomData final : public VRContainer {
 public:
  // addGroupLengths: false for a data set read from a file, true for one that the writer builds
  // and whose group length elements it keeps.
  explicit DicomData(bool addGroupLengths) : VRContainer(addGroupLengths) {}
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_DICOMDATA_H
