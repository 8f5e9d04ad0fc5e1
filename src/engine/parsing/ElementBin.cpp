#include "engine/parsing/ElementBin.h"

namespace DicomEngine {

void ElementBin::Put(std::unique_ptr<VR> element) {
  if (element == nullptr) return;
  if (IsExactly<VRSequenceItem>(*element)) {
    for (std::unique_ptr<VR>& inner : static_cast<VRSequenceItem&>(*element).TakeElements()) {
      Put(std::move(inner));
    }
  }
  Keep<VRString>(element);
  Keep<VRUniqueIdentifier>(element);
  Keep<UnsignedIntegerVR>(element);
  Keep<UnsignedShortVR>(element);
  Keep<VRSequenceItem>(element);
}

// Exactly Element, not a class derived from it, since a spare is made anew as an Element. What
// isn't kept stays in element.
template <class Element>
void ElementBin::Keep(std::unique_ptr<VR>& element) {
  if (element == nullptr || !IsExactly<Element>(*element)) return;
  std::vector<std::unique_ptr<Element>>& spares = Spares<Element>();
  if (spares.size() >= kMaxSpares) return;
  spares.emplace_back(static_cast<Element*>(element.release()));
}

}  // namespace DicomEngine
