// A value representation code as the file spells it ("UL", "SQ"), held inline in the element.
// Items and delimiters have the empty code. Every element that the engine makes has a code of two
// letters or none, so two characters hold it; a longer text keeps its first two.
#ifndef HALVORINE_ENGINE_ELEMENTS_VRCODE_H
#define HALVORINE_ENGINE_ELEMENTS_VRCODE_H

#include <cstdint>
#include <string_view>

namespace DicomEngine {

class VRCode {
 public:
  constexpr VRCode() = default;
  // Implicit, so that "UL" stands wherever a code is asked for.
  constexpr VRCode(std::string_view text)
      : size_(static_cast<std::uint8_t>(text.size() < 2 ? text.size() : 2)) {
    for (std::uint8_t i = 0; i < size_; ++i) letters_[i] = text[i];
  }

  constexpr VRCode(const char* text) : VRCode(std::string_view(text)) {}

  constexpr std::string_view View() const { return {letters_, size_}; }

  friend constexpr bool operator==(const VRCode& code, std::string_view text) {
    return code.View() == text;
  }

 private:
  char letters_[2] = {};
  std::uint8_t size_ = 0;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_VRCODE_H
