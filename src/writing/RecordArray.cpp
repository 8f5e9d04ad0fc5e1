#include "writing/RecordArray.h"

#include <utility>

#include "writing/WritingCommon.h"

namespace halvorine {

RecordArray::RecordArray(SAFEARRAY* array, const char* level) : array_(array), level_(level) {
  if (array_ == nullptr) return;
  CheckStatus(SafeArrayGetLBound(array_, 1, &lower_), __LINE__);
  CheckStatus(SafeArrayGetUBound(array_, 1, &upper_), __LINE__);
}

RecordArray::RecordArray(SafeArrayPtr array, const char* level) : RecordArray(array.get(), level) {
  owned_ = std::move(array);
}

ComPtr<IUnknown> RecordArray::GetElement(LONG index) const {
  ComPtr<IUnknown> element;
  CheckStatus(SafeArrayGetElement(array_, &index, element.Receive()), __LINE__);
  if (!element)
    Raise(kWriterUnit, __LINE__, "The %s array holds a NULL element at index %d.", level_, index);
  return element;
}

void RecordArray::AskFor(IUnknown* element, REFIID iid, void** typed) {
  CheckStatus(element->QueryInterface(iid, typed), __LINE__);
}

}  // namespace halvorine
