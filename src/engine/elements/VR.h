// One data element: the abstract base of the element tree. A tree is owned from its root, a
// DicomData: every element belongs to the one container that it was added to, and elements are
// told apart by run-time type tests on VR pointers.
#ifndef HALVORINE_ENGINE_ELEMENTS_VR_H
#define HALVORINE_ENGINE_ELEMENTS_VR_H

#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

#include "engine/elements/VRCode.h"
#include "engine/encoding/BufferWriter.h"

namespace DicomEngine {

// The length of an element whose end is marked by a delimiter.
inline constexpr std::uint32_t kUndefinedLength = 0xFFFFFFFF;
// Items and delimiters lie in this group; it has no VR field in any syntax.
inline constexpr std::uint16_t kItemGroup = 0xFFFE;
// The file meta information's group, which the header syntax always encodes.
inline constexpr std::uint16_t kMetaGroup = 0x0002;

class VR {
 public:
  VR(const VR&) = delete;
  VR& operator=(const VR&) = delete;
  virtual ~VR();

  // "(%04X, %04X) VR=%s Length=%u<=>0x%X"; the classes append their value to it.
  virtual std::string ToString() const;
  // The element's own length; a sequence gives the sum of its items' lengths instead.
  virtual std::uint32_t GetLength() const;
  // The value bytes alone, with no tag and no length.
  virtual void WriteValue(BufferWriter& writer) = 0;

  // Tag, code, length field and value. Unless the length is undefined, the length field and
  // `length` end up holding the bytes really written, whatever was declared: a declared length
  // only reserves the field.
  void Write(BufferWriter& writer);
  void PadLengthToEven();
  std::string GetVRCode() const { return std::string(vrCode.View()); }

  const std::uint16_t group;
  const std::uint16_t element;
  const VRCode vrCode;
  // What the creator declared; Write, PadLengthToEven and SetValue change it.
  std::uint32_t length;

 protected:
  VR(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement, std::uint32_t declaredLength);
};

// Whether element is exactly an Element, by the address of the type's name: one comparison where
// dynamic_cast walks the class graph. Within one binary each type has one name, so a false answer
// means another class, or at worst the class as another binary names it.
template <class Element>
bool IsExactly(const VR& element) {
  return typeid(element).name() == typeid(Element).name();
}

// dynamic_cast<const Target*>(&element), decided at once when element is exactly one of Likely:
// the parser's loops test every element, and nearly always one of a few classes comes.
template <class Target, class... Likely>
const Target* ElementCast(const VR& element) {
  const Target* found = nullptr;
  if (((IsExactly<Likely>(element) && (found = static_cast<const Likely*>(&element))) || ...)) {
    return found;
  }
  return dynamic_cast<const Target*>(&element);
}

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VR_H
