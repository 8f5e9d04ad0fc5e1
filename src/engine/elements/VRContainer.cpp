#include "engine/elements/VRContainer.h"

#include <optional>

#include "engine/elements/VRNumeric.h"
#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "VRContainer";

// Groups ending in F stand outside the order and get no group length element.
bool IsOutsideOrder(std::uint16_t group) { return (group & 0x000F) == 0x000F; }

std::uint32_t OrderKey(const VR& element) {
  return (std::uint32_t{element.group} << 16) | element.element;
}

std::uint32_t OffsetKey(const VR& element) {
  return (std::uint32_t{element.element} << 16) | element.group;
}

// The group length element of the group being written: when the next one comes, or the list
// ends, the bytes written since its value go into its value, in the stream and in the object.
class OpenGroup {
 public:
  void Close(BufferWriter& writer) {
    if (!lengthPosition_) return;
    const std::uint32_t groupLength = writer.GetCursor() - *lengthPosition_ - 4;
    writer.WriteUnsignedLongAtPosition(groupLength, *lengthPosition_);
    if (element_ != nullptr) element_->values = {groupLength};
  }

  // After element has been written: its value is the 4 bytes before the cursor.
  void Open(BufferWriter& writer, VR& element) {
    lengthPosition_ = writer.GetCursor() - 4;
    element_ = dynamic_cast<UnsignedIntegerVR*>(&element);
  }

 private:
  std::optional<std::uint32_t> lengthPosition_;
  UnsignedIntegerVR* element_ = nullptr;
};

}  // namespace

VRContainer::VRContainer(bool addGroupLengths) : addGroupLengths_(addGroupLengths) {}

VRContainer::~VRContainer() = default;

std::string VRContainer::ToString() const {
  std::string text;
  for (const auto& element : elements_) {
    if (!text.empty()) text += "\r\n";
    text += element->ToString();
  }
  return text;
}

std::string VRContainer::WithElements(std::string header) const {
  if (!elements_.empty()) header.append("\r\n").append(VRContainer::ToString());
  return header;
}

std::uint32_t VRContainer::GetLength() const {
  std::uint32_t sum = 0;
  for (const auto& element : elements_) sum += element->GetLength();
  return sum;
}

void VRContainer::Write(BufferWriter& writer) { WriteElements(writer, nullptr); }

VR* VRContainer::Find(std::uint16_t group, std::uint16_t element) const {
  for (const auto& candidate : elements_) {
    if (candidate->group == group && candidate->element == element) return candidate.get();
  }
  return nullptr;
}

void VRContainer::Insert(std::unique_ptr<VR>&& element) {
  if (element == nullptr) return;
  if (IsOutsideOrder(element->group)) {
    Append(std::move(element), true);
    return;
  }
  const std::uint32_t key = OrderKey(*element);
  bool groupSeen = false;
  auto position = elements_.begin();
  for (; position != elements_.end(); ++position) {
    const VR& current = **position;
    if (IsOutsideOrder(current.group)) continue;
    groupSeen = groupSeen || current.group == element->group;
    if (OrderKey(current) > key) break;
  }
  std::unique_ptr<VR> groupLength;
  if (addGroupLengths_ && !groupSeen) {
    groupLength = std::make_unique<UnsignedIntegerVR>("UL", element->group, 0, 4, 0u);
  }
  if (position == elements_.end()) {
    Append(std::move(groupLength), false);
    Append(std::move(element), true);
  } else {
    position = elements_.insert(position, std::move(element));
    if (groupLength != nullptr) elements_.insert(position, std::move(groupLength));
  }
}

void VRContainer::Append(std::unique_ptr<VR>&& element, bool checkDuplicate) {
  if (element == nullptr) return;
  if (checkDuplicate && element->length > 0 && Find(element->group, element->element) != nullptr) {
    const std::string message = halvorine::FormatBounded(
        256, "Attempt to reinsert an existing VR. \r\nVR= %s", element->ToString().c_str());
    halvorine::Raise(kUnit, __LINE__, "%s", message.c_str());
  }
  elements_.push_back(std::move(element));
}

void VRContainer::WriteElements(BufferWriter& writer, OffsetMap* offsets) {
  OpenGroup openGroup;
  for (const auto& element : elements_) {
    const bool isGroupLength = addGroupLengths_ && element->element == 0;
    if (isGroupLength) openGroup.Close(writer);
    if (offsets != nullptr) {
      (*offsets)[isGroupLength ? element->group : OffsetKey(*element)] = writer.GetCursor();
    }
    element->Write(writer);
    if (isGroupLength) openGroup.Open(writer, *element);
  }
  openGroup.Close(writer);
}

}  // namespace DicomEngine
