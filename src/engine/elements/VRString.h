// A text element: every code from "AE" to "UT" that isn't a UID. The value stays the text of the
// file, backslashes of a multi-valued text included; nothing is parsed into dates or numbers.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRSTRING_H
#define HALVORINE_ENGINE_ELEMENTS_VRSTRING_H

#include <cstdint>
#include <string>
#include <utility>

#include "engine/elements/VR.h"

namespace DicomEngine {

class VRString : public VR {
 public:
  VRString(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
           std::uint32_t declaredLength, std::string value);

  // The header, then " Value=[", the whole value, "]".
  std::string ToString() const override;
  // Makes the length even, then writes the text up to its first NUL, filled with blanks up to
  // the length: the declared length works as a minimum width, and a longer text goes out whole.
  void WriteValue(BufferWriter& writer) override;

  const std::string& GetValue() const { return value_; }
  // Replaces the value; the length becomes the text's size, made even.
  void SetValue(std::string value);
  // Moves the value out, leaving it empty: its buffer can serve another text.
  std::string TakeValue() { return std::exchange(value_, {}); }

 private:
  std::string value_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRSTRING_H
