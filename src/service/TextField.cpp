#include "service/TextField.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

namespace halvorine {

bool TextField::Get(BSTR* out) const {
  if (IsNull()) {
    *out = nullptr;
    return true;
  }
  Header header;
  std::memcpy(&header, block_.get(), sizeof header);
  BSTR text = SysAllocStringLen(nullptr, header.length);
  if (text == nullptr) return false;
  const std::byte* const units = block_.get() + sizeof header;
  if (header.unitSize == sizeof(OLECHAR)) {
    std::memcpy(text, units, std::size_t{header.length} * sizeof(OLECHAR));
  } else {
    std::transform(units, units + header.length, text,
                   [](std::byte unit) { return static_cast<OLECHAR>(unit); });
  }
  *out = text;
  return true;
}

bool TextField::Set(const OLECHAR* text) {
  if (text == nullptr) {
    block_.reset();
    return true;
  }
  const std::size_t length = std::char_traits<OLECHAR>::length(text);
  // Every unit is below 256 when all of them together have no higher bit.
  OLECHAR bits = 0;
  for (std::size_t index = 0; index < length; ++index) bits |= text[index];
  const Header header{static_cast<std::uint32_t>(length), bits < 256 ? 1u : 2u};
  std::unique_ptr<std::byte[]> block(new (std::nothrow)
                                         std::byte[sizeof header + length * header.unitSize]);
  if (!block) return false;
  std::memcpy(block.get(), &header, sizeof header);
  std::byte* const units = block.get() + sizeof header;
  if (header.unitSize == sizeof(OLECHAR)) {
    std::memcpy(units, text, length * sizeof(OLECHAR));
  } else {
    std::transform(text, text + length, units,
                   [](OLECHAR unit) { return static_cast<std::byte>(unit); });
  }
  block_ = std::move(block);
  return true;
}

}  // namespace halvorine
