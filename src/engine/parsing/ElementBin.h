// Elements that a caller is done with, kept so that the parser fills them again instead of
// allocating: a directory's records are parsed, read and dropped one after the other, and each
// new record's elements then take the storage of the last one's, text buffers included.
//
// Only the classes that records are made of are kept, a bounded number of each; anything else is
// destroyed on the spot.
#ifndef HALVORINE_ENGINE_PARSING_ELEMENTBIN_H
#define HALVORINE_ENGINE_PARSING_ELEMENTBIN_H

#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/elements/VR.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"

namespace DicomEngine {

class ElementBin {
 public:
  // More than a record's elements of one class, and few enough to stay small.
  static constexpr std::size_t kMaxSpares = 64;

  // Keeps element and, for an item, everything in it.
  void Put(std::unique_ptr<VR> element);

  // A new Element made from arguments, in the storage of a spare when there is one.
  template <class Element, class... Arguments>
  std::unique_ptr<Element> Make(Arguments&&... arguments) {
    std::vector<std::unique_ptr<Element>>& spares = Spares<Element>();
    if (spares.empty()) return std::make_unique<Element>(std::forward<Arguments>(arguments)...);
    Element* storage = spares.back().release();
    spares.pop_back();
    // Tag and code are const, so the spare is made anew rather than assigned to.
    std::destroy_at(storage);
    return std::unique_ptr<Element>(
        std::construct_at(storage, std::forward<Arguments>(arguments)...));
  }

  // The value buffer of the spare that the next Make<Text> will use, emptied, for the text to be
  // read into; an empty string when there is none.
  template <class Text>
  std::string TakeBuffer() {
    std::vector<std::unique_ptr<Text>>& spares = Spares<Text>();
    return spares.empty() ? std::string() : spares.back()->TakeValue();
  }

 private:
  template <class Element>
  std::vector<std::unique_ptr<Element>>& Spares() {
    return std::get<std::vector<std::unique_ptr<Element>>>(spares_);
  }
  template <class Element>
  void Keep(std::unique_ptr<VR>& element);

  std::tuple<
      std::vector<std::unique_ptr<VRString>>, std::vector<std::unique_ptr<VRUniqueIdentifier>>,
      std::vector<std::unique_ptr<UnsignedIntegerVR>>,
      std::vector<std::unique_ptr<UnsignedShortVR>>, std::vector<std::unique_ptr<VRSequenceItem>>>
      spares_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_ELEMENTBIN_H
