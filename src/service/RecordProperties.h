// The families of getters and setters that the record classes are made of. Each family behaves
// the same for every field that belongs to it:
//   text    null out: E_POINTER; else a new copy (null for a null field). The setter copies up to
//           the first NUL; null gives null.
//   value   null out: E_POINTER; else the field. The setter stores with no range check.
//   pair    either out null: E_POINTER and neither is written; else both.
//   array   null out: E_POINTER; a null field gives null; else a new copy (SafeArrayCopy), which
//           adds a reference to each element. The setter keeps a copy of the caller's array.
//   link    a bare back pointer: no reference is added on either side.
#ifndef HALVORINE_SERVICE_RECORDPROPERTIES_H
#define HALVORINE_SERVICE_RECORDPROPERTIES_H

#include <halvorine/com.h>

#include "platform/BString.h"
#include "platform/SafeArrayPtr.h"

namespace halvorine {

HRESULT GetText(const BString& field, BSTR* out);
HRESULT SetText(BString& field, const OLECHAR* value);
HRESULT GetArray(const SafeArrayPtr& field, SAFEARRAY** out);
HRESULT SetArray(SafeArrayPtr& field, SAFEARRAY* value);

template <class T>
HRESULT GetValue(const T& field, T* out) {
  if (out == nullptr) return E_POINTER;
  *out = field;
  return S_OK;
}

template <class T>
HRESULT SetValue(T& field, T value) {
  field = value;
  return S_OK;
}

template <class T>
HRESULT GetPair(const T& firstField, const T& secondField, T* first, T* second) {
  if (first == nullptr || second == nullptr) return E_POINTER;
  *first = firstField;
  *second = secondField;
  return S_OK;
}

template <class T>
HRESULT SetPair(T& firstField, T& secondField, T first, T second) {
  firstField = first;
  secondField = second;
  return S_OK;
}

}  // namespace halvorine

// Each macro declares the getter and the setter of one field, named Get<Name> and Set<Name>,
// with the setter's argument named as the interface names it.
#define HALVORINE_TEXT_PROPERTY(Name, argument, field)                                 \
  HRESULT Get##Name(BSTR* pRetVal) override { return GetText(field, pRetVal); } \
  HRESULT Set##Name(BSTR argument) override { return SetText(field, argument); }

#define HALVORINE_VALUE_PROPERTY(Type, Name, argument, field)                            \
  HRESULT Get##Name(Type* pRetVal) override { return GetValue<Type>(field, pRetVal); } \
  HRESULT Set##Name(Type argument) override { return SetValue<Type>(field, argument); }

#define HALVORINE_PAIR_PROPERTY(Type, Name, first, second, firstField, secondField) \
  HRESULT Get##Name(Type* first, Type* second) override {                           \
    return GetPair<Type>(firstField, secondField, first, second);                   \
  }                                                                                 \
  HRESULT Set##Name(Type first, Type second) override {                             \
    return SetPair<Type>(firstField, secondField, first, second);                   \
  }

#define HALVORINE_ARRAY_PROPERTY(Name, outArgument, argument, field)                      \
  HRESULT Get##Name(SAFEARRAY** outArgument) override { return GetArray(field, outArgument); } \
  HRESULT Set##Name(SAFEARRAY* argument) override { return SetArray(field, argument); }

#define HALVORINE_LINK_PROPERTY(Interface, Name, outArgument, argument, field)             \
  HRESULT Get##Name(Interface** outArgument) override {                                  \
    return GetValue<Interface*>(field, outArgument);                                     \
  }                                                                                      \
  HRESULT Set##Name(Interface* argument) override { return SetValue<Interface*>(field, argument); }

#endif  // HALVORINE_SERVICE_RECORDPROPERTIES_H
