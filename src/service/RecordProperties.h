// The families of getters and setters that the record classes are made of. Each family behaves
// the same for every field that belongs to it:
//   text    null out: E_POINTER; else a new copy (null for a null field). The setter copies up to
//           the first NUL; null gives null.
//   value   null out: E_POINTER; else the field. The setter stores with no range check.
//   pair    either out null: E_POINTER and neither is written; else both.
//   array   null out: E_POINTER; a null field gives null; else a new copy (SafeArrayCopy), which
//           adds a reference to each element. The setter keeps a copy of the caller's array.
//   link    a bare back pointer: no reference is added on either side.
// A setter stores through a pointer to its field, which is null when the field's room couldn't be
// made (see DetailFields): the setter then answers E_OUTOFMEMORY and nothing changes.
#ifndef HALVORINE_SERVICE_RECORDPROPERTIES_H
#define HALVORINE_SERVICE_RECORDPROPERTIES_H

#include <halvorine/com.h>

#include <memory>
#include <new>

#include "platform/SafeArrayPtr.h"
#include "service/TextField.h"

namespace halvorine {

HRESULT GetText(const TextField& field, BSTR* out);
HRESULT SetText(TextField* field, const OLECHAR* value);
HRESULT GetArray(const SafeArrayPtr& field, SAFEARRAY** out);
HRESULT SetArray(SafeArrayPtr& field, SAFEARRAY* value);

template <class T>
HRESULT GetValue(const T& field, T* out) {
  if (out == nullptr) return E_POINTER;
  *out = field;
  return S_OK;
}

template <class T>
HRESULT SetValue(T* field, T value) {
  if (field == nullptr) return E_OUTOFMEMORY;
  *field = value;
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
HRESULT SetPair(T* firstField, T* secondField, T first, T second) {
  if (firstField == nullptr || secondField == nullptr) return E_OUTOFMEMORY;
  *firstField = first;
  *secondField = second;
  return S_OK;
}

// The fields that a load never fills and most hosts never set, in a block that is made on the
// first write: a directory has many records, and their objects stay small. Until then, reads see
// the block's defaults.
template <class Block>
class DetailFields {
 public:
  const Block& Read() const { return block_ ? *block_ : Defaults(); }
  // Where member is written; null when the block can't be made.
  template <class T>
  T* Place(T Block::*member) {
    if (!block_) block_.reset(new (std::nothrow) Block());
    return block_ ? &(block_.get()->*member) : nullptr;
  }

 private:
  static const Block& Defaults() {
    static const Block defaults;
    return defaults;
  }

  std::unique_ptr<Block> block_;
};

}  // namespace halvorine

// Each macro declares the getter and the setter of one field, named Get<Name> and Set<Name>,
// with the setter's argument named as the interface names it. The _AT forms take the field as
// read and its place as written; the DETAIL forms a field of the class's DetailFields<Details>
// details_.
#define HALVORINE_TEXT_PROPERTY_AT(Name, argument, field, place)                \
  HRESULT Get##Name(BSTR* pRetVal) override { return GetText(field, pRetVal); } \
  HRESULT Set##Name(BSTR argument) override { return SetText(place, argument); }

#define HALVORINE_VALUE_PROPERTY_AT(Type, Name, argument, field, place)                \
  HRESULT Get##Name(Type* pRetVal) override { return GetValue<Type>(field, pRetVal); } \
  HRESULT Set##Name(Type argument) override { return SetValue<Type>(place, argument); }

#define HALVORINE_PAIR_PROPERTY_AT(Type, Name, first, second, firstField, secondField, firstPlace, \
                                   secondPlace)                                                    \
  HRESULT Get##Name(Type* first, Type* second) override {                                          \
    return GetPair<Type>(firstField, secondField, first, second);                                  \
  }                                                                                                \
  HRESULT Set##Name(Type first, Type second) override {                                            \
    return SetPair<Type>(firstPlace, secondPlace, first, second);                                  \
  }

#define HALVORINE_TEXT_PROPERTY(Name, argument, field) \
  HALVORINE_TEXT_PROPERTY_AT(Name, argument, field, &field)
#define HALVORINE_VALUE_PROPERTY(Type, Name, argument, field) \
  HALVORINE_VALUE_PROPERTY_AT(Type, Name, argument, field, &field)
#define HALVORINE_PAIR_PROPERTY(Type, Name, first, second, firstField, secondField)           \
  HALVORINE_PAIR_PROPERTY_AT(Type, Name, first, second, firstField, secondField, &firstField, \
                             &secondField)

#define HALVORINE_DETAIL_TEXT_PROPERTY(Name, argument, field) \
  HALVORINE_TEXT_PROPERTY_AT(Name, argument, details_.Read().field, details_.Place(&Details::field))
#define HALVORINE_DETAIL_VALUE_PROPERTY(Type, Name, argument, field)       \
  HALVORINE_VALUE_PROPERTY_AT(Type, Name, argument, details_.Read().field, \
                              details_.Place(&Details::field))
#define HALVORINE_DETAIL_PAIR_PROPERTY(Type, Name, first, second, firstField, secondField)      \
  HALVORINE_PAIR_PROPERTY_AT(Type, Name, first, second, details_.Read().firstField,             \
                             details_.Read().secondField, details_.Place(&Details::firstField), \
                             details_.Place(&Details::secondField))

#define HALVORINE_ARRAY_PROPERTY(Name, outArgument, argument, field)                           \
  HRESULT Get##Name(SAFEARRAY** outArgument) override { return GetArray(field, outArgument); } \
  HRESULT Set##Name(SAFEARRAY* argument) override { return SetArray(field, argument); }

#define HALVORINE_LINK_PROPERTY(Interface, Name, outArgument, argument, field) \
  HRESULT Get##Name(Interface** outArgument) override {                        \
    return GetValue<Interface*>(field, outArgument);                           \
  }                                                                            \
  HRESULT Set##Name(Interface* argument) override { return SetValue<Interface*>(&field, argument); }

#endif  // HALVORINE_SERVICE_RECORDPROPERTIES_H
