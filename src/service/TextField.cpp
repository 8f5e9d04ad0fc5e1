#include "service/TextField.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "platform/TextCodec.h"

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
  std::unique_ptr<std::byte[]> block = MakeBlock(length, bits < 256 ? 1 : sizeof(OLECHAR));
  if (!block) return false;
  std::byte* const units = block.get() + sizeof(Header);
  if (bits >= 256) {
    std::memcpy(units, text, length * sizeof(OLECHAR));
  } else {
    std::transform(text, text + length, units,
                   [](OLECHAR unit) { return static_cast<std::byte>(unit); });
  }
  block_ = std::move(block);
  return true;
}

bool TextField::SetUtf8(std::optional<std::string_view> text) {
  if (!text) return Set(nullptr);
  const std::string_view bytes = text->substr(0, text->find('\0'));
  unsigned char bits = 0;
  for (const char byte : bytes) bits |= static_cast<unsigned char>(byte);
  if (bits >= 0x80) return Set(Utf8ToUtf16(bytes).c_str());
  // ASCII bytes are their own UTF-16 units.
  std::unique_ptr<std::byte[]> block = MakeBlock(bytes.size(), 1);
  if (!block) return false;
  std::memcpy(block.get() + sizeof(Header), bytes.data(), bytes.size());
  block_ = std::move(block);
  return true;
}

std::unique_ptr<std::byte[]> TextField::MakeBlock(std::size_t length, std::uint32_t unitSize) {
  const Header header{static_cast<std::uint32_t>(length), unitSize};
  std::unique_ptr<std::byte[]> block(new (std::nothrow)
                                         std::byte[sizeof header + length * unitSize]);
  if (block) std::memcpy(block.get(), &header, sizeof header);
  return block;
}

}  // namespace halvorine
