#include "engine/elements/VRBinary.h"

#include <algorithm>

#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "VRBinary";

}  // namespace

VRBinary::VRBinary(VRCode code, std::uint16_t tagGroup, std::uint16_t tagElement,
                   std::uint32_t declaredLength, std::unique_ptr<std::uint8_t[]> data)
    : VR(code, tagGroup, tagElement, declaredLength), data_(std::move(data)) {}

std::string VRBinary::ToString() const {
  return VR::ToString() + halvorine::FormatBounded(64, " Value=BINARY Length=[%d<=>0x%x]",
                                                   static_cast<int>(length), length);
}

void VRBinary::WriteValue(BufferWriter& writer) { writer.WriteBytes(data_.get(), length); }

void VRBinary::GetPixelData(std::unique_ptr<std::uint8_t[]>* data, std::uint32_t* count) const {
  if (data == nullptr || count == nullptr) {
    halvorine::Raise(kUnit, __LINE__, "The Pixel data buffer pointer is NULL.");
  }
  *count = length;
  if (data_ == nullptr) {
    data->reset();
    return;
  }
  *data = std::make_unique_for_overwrite<std::uint8_t[]>(length);
  std::copy_n(data_.get(), length, data->get());
}

}  // namespace DicomEngine
