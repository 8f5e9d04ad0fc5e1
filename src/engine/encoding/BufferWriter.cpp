#include "engine/encoding/BufferWriter.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "BufferWriter";
constexpr std::uint16_t kDelimiterGroup = 0xFFFE;

bool HasLongLengthForm(std::string_view code) {
  return code == "OB" || code == "OW" || code == "SQ" || code == "UN" || code == "UT";
}

bool IsExplicit(std::uint16_t group, SyntaxRecord syntax) {
  return group != kDelimiterGroup && syntax.vrForm != kImplicitVR;
}

// A block of many megabytes is written once from start to end, and first-touch faults of small
// pages would cost more than the copy itself. Huge pages are only a hint: where the system
// refuses it, the block works as it is.
void AdviseHugePages(std::uint8_t* block, std::uint64_t size) {
#ifdef MADV_HUGEPAGE
  static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  constexpr std::uintptr_t kHugePageSize = 2 << 20;
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t start = (address + pageSize - 1) / pageSize * pageSize;
  const std::uintptr_t end = (address + size) / pageSize * pageSize;
  if (end < start + kHugePageSize) return;
  madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
#else
  static_cast<void>(block);
  static_cast<void>(size);
#endif
}

}  // namespace

BufferWriter::BufferWriter(std::string_view transferSyntaxUid) {
  if (const SyntaxRecord* record = TransferSyntax::GetInstance().Find(transferSyntaxUid)) {
    syntax_ = *record;
  }
}

BufferWriter::~BufferWriter() = default;

SyntaxRecord BufferWriter::GetSyntaxForGroup(std::uint16_t group) const {
  return group == kDelimiterGroup ? kImplicitLittleEndian : syntax_;
}

void BufferWriter::WriteFloat(float value) { Put(std::bit_cast<std::uint32_t>(value)); }

void BufferWriter::WriteDouble(double value) { Put(std::bit_cast<std::uint64_t>(value)); }

void BufferWriter::WriteBytes(const std::uint8_t* data, std::uint32_t count) {
  if (count == 0) return;
  EnsureCapacity(count);
  if (data != nullptr) {
    std::memcpy(buffer_.get() + cursor_, data, count);
  } else {
    std::memset(buffer_.get() + cursor_, 0, count);
  }
  cursor_ += count;
}

void BufferWriter::WriteText(std::string_view text, std::uint32_t length) {
  WritePadded(text, std::uint64_t{length} + (length & 1), ' ');
}

void BufferWriter::WriteUid(std::string_view text, std::uint32_t length) {
  WritePadded(text, length, '\0');
}

void BufferWriter::WritePadded(std::string_view text, std::uint64_t length, std::uint8_t pad) {
  if (length == 0) return;
  text = text.substr(0, text.find('\0'));
  const std::uint64_t total = std::max<std::uint64_t>(text.size(), length);
  EnsureCapacity(total);
  std::uint8_t* target = buffer_.get() + cursor_;
  if (!text.empty()) std::memcpy(target, text.data(), text.size());
  std::memset(target + text.size(), pad, total - text.size());
  cursor_ += static_cast<std::uint32_t>(total);
}

void BufferWriter::WriteVRCode(std::uint16_t group, std::string_view code) {
  if (IsExplicit(group, GetSyntaxForGroup(group))) WritePadded(code, 2, ' ');
}

void BufferWriter::WriteLength(std::uint16_t group, std::string_view code, std::uint32_t length) {
  if (!IsExplicit(group, GetSyntaxForGroup(group))) {
    WriteUnsignedLong(length);
  } else if (HasLongLengthForm(code)) {
    WriteUnsignedShort(0);
    WriteUnsignedLong(length);
  } else {
    WriteUnsignedShort(static_cast<std::uint16_t>(length));
  }
}

void BufferWriter::SetCursor(std::uint32_t position) {
  if (position > capacity_) {
    halvorine::Raise(kUnit, __LINE__,
                     "Attempt to move the buffer writer cursor outside the buffer size.");
  }
  cursor_ = position;
}

void BufferWriter::WriteUnsignedLongAtPosition(std::uint32_t value, std::uint32_t position) {
  if (std::uint64_t{position} + 4 > capacity_) {
    halvorine::Raise(kUnit, __LINE__, "WriteUnsignedLongAtPosition failed.");
  }
  const std::uint32_t end = cursor_;
  cursor_ = position;
  WriteUnsignedLong(value);
  cursor_ = end;
}

void BufferWriter::Grow(std::uint64_t count) {
  const std::uint64_t wanted = cursor_ + std::max<std::uint64_t>(count, kGrowthStep);
  if (wanted > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  // On failure realloc leaves the old block alone, so the writer stays as it was.
  void* block = std::realloc(buffer_.get(), wanted);
  if (block == nullptr) throw std::bad_alloc();
  static_cast<void>(buffer_.release());
  buffer_.reset(static_cast<std::uint8_t*>(block));
  capacity_ = static_cast<std::uint32_t>(wanted);
  AdviseHugePages(buffer_.get(), wanted);
}

}  // namespace DicomEngine
