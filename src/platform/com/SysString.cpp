// BSTR allocation with the Windows layout:
//
//   offset  size      content
//   0       4         byte count of the characters, without the terminator
//   4       2 * n     the characters (a BSTR points here)
//   4 + 2n  2         NUL
#include <halvorine/com.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr UINT kMaxLength = (0x7FFFFFFFu - sizeof(std::uint32_t) - sizeof(OLECHAR)) / sizeof(OLECHAR);

std::uint32_t* Header(BSTR text) {
  return reinterpret_cast<std::uint32_t*>(reinterpret_cast<char*>(text) - sizeof(std::uint32_t));
}

}  // namespace

HALVOCOM_API BSTR SysAllocStringLen(const OLECHAR* strIn, UINT ui) {
  if (ui > kMaxLength) return nullptr;
  const std::size_t bytes = std::size_t{ui} * sizeof(OLECHAR);
  void* block = std::malloc(sizeof(std::uint32_t) + bytes + sizeof(OLECHAR));
  if (block == nullptr) return nullptr;
  *static_cast<std::uint32_t*>(block) = static_cast<std::uint32_t>(bytes);
  BSTR text = reinterpret_cast<BSTR>(static_cast<char*>(block) + sizeof(std::uint32_t));
  // Windows leaves the characters of a null source uninitialised; zeros are kinder to callers.
  if (strIn != nullptr) {
    std::memcpy(text, strIn, bytes);
  } else {
    std::memset(text, 0, bytes);
  }
  text[ui] = u'\0';
  return text;
}

HALVOCOM_API BSTR SysAllocString(const OLECHAR* psz) {
  if (psz == nullptr) return nullptr;
  const std::size_t length = std::char_traits<char16_t>::length(psz);
  if (length > kMaxLength) return nullptr;
  return SysAllocStringLen(psz, static_cast<UINT>(length));
}

HALVOCOM_API void SysFreeString(BSTR bstrString) {
  if (bstrString != nullptr) std::free(Header(bstrString));
}

HALVOCOM_API UINT SysStringLen(BSTR pbstr) {
  return pbstr == nullptr ? 0 : *Header(pbstr) / sizeof(OLECHAR);
}
