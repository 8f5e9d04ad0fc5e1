#ifndef HALVORINE_PLATFORM_BSTRING_H
#define HALVORINE_PLATFORM_BSTRING_H

#include <halvorine/com.h>

#include <string>
#include <string_view>
#include <utility>

namespace halvorine {

// Owns one BSTR, which may be null; null and empty stay different.
class BString {
 public:
  BString() = default;
  // Takes over a BSTR that the caller owns.
  static BString Adopt(BSTR text) {
    BString held;
    held.text_ = text;
    return held;
  }
  // A copy up to the first NUL, as SysAllocString makes it; null gives null.
  static BString Copy(const OLECHAR* text) { return Adopt(SysAllocString(text)); }
  static BString Copy(std::u16string_view text) {
    return Adopt(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
  }
  BString(BString&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  BString& operator=(BString&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  BString(const BString&) = delete;
  BString& operator=(const BString&) = delete;
  ~BString() { SysFreeString(text_); }

  BSTR get() const { return text_; }
  bool IsNull() const { return text_ == nullptr; }
  std::u16string_view View() const { return {text_ == nullptr ? u"" : text_, SysStringLen(text_)}; }
  BSTR* Receive() {
    *this = BString();
    return &text_;
  }
  BSTR Detach() { return std::exchange(text_, nullptr); }

 private:
  BSTR text_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_BSTRING_H
