#include "engine/elements/VRSequence.h"

#include <algorithm>

#include "engine/elements/VRBinarySequenceItem.h"
#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "VRSequence";

}  // namespace

VRSequence::VRSequence(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                       std::uint32_t declaredLength)
    : VR(code, tagGroup, tagElement, declaredLength) {}

std::string VRSequence::ToString() const { return WithElements(VR::ToString()); }

std::uint32_t VRSequence::GetLength() const { return VRContainer::GetLength(); }

void VRSequence::WriteValue(BufferWriter& writer) { WriteElements(writer, nullptr); }

void VRSequence::GetPixelData(std::unique_ptr<std::uint8_t[]>* data, std::uint32_t* count) const {
  if (data == nullptr || count == nullptr) {
    halvorine::Raise(kUnit, __LINE__, "The Pixel data buffer pointer is NULL.");
  }
  *count = GetLength();
  if (*count == 0) {
    data->reset();
    return;
  }
  auto block = std::make_unique<std::uint8_t[]>(*count);
  std::uint8_t* next = block.get();
  const std::uint8_t* const end = block.get() + *count;
  for (const auto& item : Elements()) {
    const auto* fragment = dynamic_cast<const VRBinarySequenceItem*>(item.get());
    if (fragment == nullptr || fragment->GetData() == nullptr) continue;
    const auto size = std::min<std::size_t>(fragment->length, end - next);
    next = std::copy_n(fragment->GetData(), size, next);
  }
  *data = std::move(block);
}

}  // namespace DicomEngine
