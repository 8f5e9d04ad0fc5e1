#include "writing/RecordArray.h"

#include "writing/WritingCommon.h"

namespace halvorine {

RecordArray::RecordArray(SAFEARRAY* array, const char* level) : level_(level) {
  CheckStatus(ForEachElement(array,
                             [this](LONG index, IUnknown* element) {
                               if (elements_.empty()) lower_ = index;
                               upper_ = index;
                               elements_.push_back(ComPtr<IUnknown>::Share(element));
                             }),
              __LINE__);
}

IUnknown* RecordArray::GetElement(LONG index) const {
  IUnknown* element = elements_[static_cast<std::size_t>(index - lower_)].get();
  if (element == nullptr)
    Raise(kWriterUnit, __LINE__, "The %s array holds a NULL element at index %d.", level_, index);
  return element;
}

void RecordArray::AskFor(IUnknown* element, REFIID iid, void** typed) {
  CheckStatus(element->QueryInterface(iid, typed), __LINE__);
}

}  // namespace halvorine
