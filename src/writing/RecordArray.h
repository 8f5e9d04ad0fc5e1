#ifndef HALVORINE_WRITING_RECORDARRAY_H
#define HALVORINE_WRITING_RECORDARRAY_H

#include <halvorine/com.h>

#include <vector>

#include "platform/ComPtr.h"
#include "platform/SafeArrayPtr.h"

namespace halvorine {

// One array of the tree as the walk reads it: its bounds, and its elements asked for the
// interface of their level. A null array holds nothing: a load leaves a childless record's array
// null, and such a tree must be writable too.
class RecordArray {
 public:
  // Holds a reference to each element, so that array need not outlive this object. level names
  // the array in failures.
  RecordArray(SAFEARRAY* array, const char* level);
  // For a child array that a getter handed out.
  RecordArray(SafeArrayPtr array, const char* level) : RecordArray(array.get(), level) {}

  LONG Lower() const { return lower_; }
  LONG Upper() const { return upper_; }
  bool IsEmpty() const { return upper_ < lower_; }

  // A counted reference to the element at index. Raises for a failing call, for an element that
  // lacks the interface, and for a null slot: a record object is needed for each index.
  template <class Interface>
  ComPtr<Interface> Get(LONG index, REFIID iid) const {
    ComPtr<Interface> typed;
    AskFor(GetElement(index), iid, reinterpret_cast<void**>(typed.Receive()));
    return typed;
  }

 private:
  IUnknown* GetElement(LONG index) const;
  static void AskFor(IUnknown* element, REFIID iid, void** typed);

  const char* level_;
  std::vector<ComPtr<IUnknown>> elements_;
  LONG lower_ = 0;
  LONG upper_ = -1;
};

}  // namespace halvorine

#endif  // HALVORINE_WRITING_RECORDARRAY_H
