// An ordered list of owned elements: the inner node of an element tree. Adding an element gives
// it to the container; destroying the container destroys everything below it.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRCONTAINER_H
#define HALVORINE_ENGINE_ELEMENTS_VRCONTAINER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/elements/VR.h"
#include "engine/encoding/BufferWriter.h"

namespace DicomEngine {

// Where each element was written: the key is the element number in the high 16 bits and the
// group in the low 16 bits, so (0004,1220) has the key 0x12200004; a group length element has
// the group alone.
using OffsetMap = std::map<std::uint32_t, std::uint32_t>;

class VRContainer {
 public:
  using ElementList = std::vector<std::unique_ptr<VR>>;

  explicit VRContainer(bool addGroupLengths = false);
  VRContainer(const VRContainer&) = delete;
  VRContainer& operator=(const VRContainer&) = delete;
  virtual ~VRContainer();

  // The elements' texts joined by "\r\n"; empty for an empty list.
  virtual std::string ToString() const;
  // The sum of the elements' GetLength, wrapping at 32 bits.
  virtual std::uint32_t GetLength() const;
  // WriteElements without an offset map.
  virtual void Write(BufferWriter& writer);

  // The first element with that tag in list order, or null. The container keeps it.
  VR* Find(std::uint16_t group, std::uint16_t element) const;

  // Ordered addition, by group then element. An element whose group ends in F goes to the end,
  // outside the order. An equal tag is passed over and the new element lands behind it; only
  // at the end of the list does a duplicate fail, as in Append. With addGroupLengths, the first
  // element of a group brings a group length element (gggg,0000) "UL" in front of it. A null
  // element is ignored; on a failure the element stays with the caller.
  void Insert(std::unique_ptr<VR>&& element);
  // Addition at the end. With checkDuplicate, an element of non-zero length whose tag is already
  // in the list raises "Attempt to reinsert an existing VR. ..." and stays with the caller; one of
  // length 0 goes in beside the first. A null element is ignored.
  void Append(std::unique_ptr<VR>&& element, bool checkDuplicate);

  // Writes the elements in list order; when offsets is given, notes where each one starts. With
  // addGroupLengths, each group length element gets the count of bytes from its own end to the
  // next group length element, or to the end of the list.
  void WriteElements(BufferWriter& writer, OffsetMap* offsets);

  const ElementList& Elements() const { return elements_; }
  // Room for count elements ahead, so that a list being filled isn't moved time and again.
  void Reserve(std::size_t count) { elements_.reserve(count); }
  // Hands over every element, leaving the list empty.
  ElementList TakeElements() { return std::exchange(elements_, {}); }

 protected:
  // The header of a sequence or an item, then "\r\n" and the elements' texts when it holds any.
  std::string WithElements(std::string header) const;

 private:
  ElementList elements_;
  const bool addGroupLengths_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRCONTAINER_H
