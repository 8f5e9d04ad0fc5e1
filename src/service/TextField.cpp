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
  std::memcpy(&header, Block(), sizeof header);
  BSTR text = SysAllocStringLen(nullptr, header.length);
  if (text == nullptr) return false;
  const std::byte* const units = Block() + sizeof header;
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
    Replace(0);
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
  Replace(reinterpret_cast<std::uintptr_t>(block.release()));
  return true;
}

// ASCII bytes are their own UTF-16 units; any other text goes through its UTF-16 form.
bool TextField::SetUtf8(std::optional<std::string_view> text) {
  if (!text) return Set(nullptr);
  const std::optional<std::string_view> ascii = AsciiPart(text);
  if (!ascii) return Set(Utf8ToUtf16(text->substr(0, text->find('\0'))).c_str());
  std::unique_ptr<std::byte[]> block = MakeBlock(ascii->size(), 1);
  if (!block) return false;
  std::memcpy(block.get() + sizeof(Header), ascii->data(), ascii->size());
  Replace(reinterpret_cast<std::uintptr_t>(block.release()));
  return true;
}

std::optional<std::string_view> TextField::AsciiPart(std::optional<std::string_view> text) {
  if (!text) return std::nullopt;
  const std::string_view bytes = text->substr(0, text->find('\0'));
  // Eight bytes at a time: ASCII has no byte with its high bit set.
  std::uint64_t bits = 0;
  std::size_t index = 0;
  for (; index + sizeof bits <= bytes.size(); index += sizeof bits) {
    std::uint64_t word;
    std::memcpy(&word, bytes.data() + index, sizeof word);
    bits |= word;
  }
  for (; index < bytes.size(); ++index) bits |= static_cast<unsigned char>(bytes[index]);
  if ((bits & 0x8080808080808080u) != 0) return std::nullopt;
  return bytes;
}

void TextField::SetAsciiAt(std::string_view ascii, std::byte* storage) {
  const Header header{static_cast<std::uint32_t>(ascii.size()), 1};
  std::memcpy(storage, &header, sizeof header);
  std::memcpy(storage + sizeof header, ascii.data(), ascii.size());
  Replace(reinterpret_cast<std::uintptr_t>(storage) | kInStorage);
}

std::unique_ptr<std::byte[]> TextField::MakeBlock(std::size_t length, std::uint32_t unitSize) {
  const Header header{static_cast<std::uint32_t>(length), unitSize};
  std::unique_ptr<std::byte[]> block(new (std::nothrow)
                                         std::byte[sizeof header + length * unitSize]);
  if (block) std::memcpy(block.get(), &header, sizeof header);
  return block;
}

void TextField::Replace(std::uintptr_t bits) {
  if ((bits_ & kInStorage) == 0) delete[] reinterpret_cast<std::byte*>(bits_);
  bits_ = bits;
}

}  // namespace halvorine
