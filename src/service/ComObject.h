#ifndef HALVORINE_SERVICE_COMOBJECT_H
#define HALVORINE_SERVICE_COMOBJECT_H

#include <halvorine/com.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "service/ModuleLock.h"
#include "service/TextField.h"

namespace halvorine {

// The root of the five classes: an atomic reference count, the module lock that every live
// object holds, and the answers to IUnknown and ISupportErrorInfo. Interface is the class's own
// interface, kIid its identifier. An object starts with no reference; Create gives the first.
template <class Interface, const IID& kIid>
class ComObject : public Interface, public ISupportErrorInfo {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    if (ppvObject == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, kIid)) {
      *ppvObject = static_cast<Interface*>(this);
    } else if (IsEqualIID(riid, IID_ISupportErrorInfo)) {
      *ppvObject = static_cast<ISupportErrorInfo*>(this);
    } else {
      *ppvObject = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT InterfaceSupportsErrorInfo(REFIID riid) override {
    return IsEqualIID(riid, kIid) ? S_OK : S_FALSE;
  }

  // Unsized: a loaded object's allocation holds its texts behind it (CreateLoadedObject).
  static void operator delete(void* object) { ::operator delete(object); }

 protected:
  ComObject() { ModuleLock::Lock(); }
  virtual ~ComObject() { ModuleLock::Unlock(); }

 private:
  std::atomic<ULONG> references_{0};
};

// Makes a T and asks it for riid. The object lives inside a temporary reference of its own, so
// a failed query destroys it again; *ppv is null then.
template <class T>
HRESULT CreateObject(REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  T* object = new (std::nothrow) T;
  if (object == nullptr) return E_OUTOFMEMORY;
  object->AddRef();
  const HRESULT hr = object->QueryInterface(riid, ppv);
  object->Release();
  return hr;
}

// A text field of a T and the UTF-8 text that a load gives it.
template <class T>
using LoadedText = std::pair<TextField T::*, std::optional<std::string_view>>;

// Makes a T with one reference for *object, sets its text fields to their texts and lets fill
// store the rest. The ASCII texts, nearly all of a disc's, go behind the object in its own
// allocation: one allocation and one free per record instead of one per text. fill tells whether
// memory sufficed; when anything ran out the object goes again.
template <class T, class Interface, std::size_t N, class Fill>
HRESULT CreateLoadedObject(Interface** object, const std::array<LoadedText<T>, N>& texts,
                           Fill fill) {
  *object = nullptr;
  std::array<std::optional<std::string_view>, N> ascii;
  std::size_t storageSize = 0;
  for (std::size_t index = 0; index < N; ++index) {
    ascii[index] = TextField::AsciiPart(texts[index].second);
    if (ascii[index]) storageSize += TextField::StorageSize(*ascii[index]);
  }
  void* memory = ::operator new(sizeof(T) + storageSize, std::nothrow);
  if (memory == nullptr) return E_OUTOFMEMORY;
  T* made = new (memory) T;
  made->AddRef();
  auto* storage = reinterpret_cast<std::byte*>(made + 1);
  bool filled = fill(*made);
  for (std::size_t index = 0; index < N && filled; ++index) {
    TextField& field = (*made).*texts[index].first;
    if (ascii[index]) {
      field.SetAsciiAt(*ascii[index], storage);
      storage += TextField::StorageSize(*ascii[index]);
    } else {
      filled = field.SetUtf8(texts[index].second);
    }
  }
  if (!filled) {
    made->Release();
    return E_OUTOFMEMORY;
  }
  *object = made;
  return S_OK;
}

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_COMOBJECT_H
