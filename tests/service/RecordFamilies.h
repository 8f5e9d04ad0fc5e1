// The checks that every field of a family must pass, driven by a table of the fields of one
// interface. Each check makes its own object and releases it again.
#ifndef HALVORINE_TESTS_SERVICE_RECORDFAMILIES_H
#define HALVORINE_TESTS_SERVICE_RECORDFAMILIES_H

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"

namespace halvorine {

template <class Interface>
struct TextField {
  const char* name;
  HRESULT (Interface::*get)(BSTR*);
  HRESULT (Interface::*set)(BSTR);
};

template <class Interface, class T>
struct ValueField {
  const char* name;
  HRESULT (Interface::*get)(T*);
  HRESULT (Interface::*set)(T);
  T initial;
};

template <class Interface, class T>
struct PairField {
  const char* name;
  HRESULT (Interface::*get)(T*, T*);
  HRESULT (Interface::*set)(T, T);
};

template <class Interface>
struct ArrayField {
  HRESULT (Interface::*get)(SAFEARRAY**);
  HRESULT (Interface::*set)(SAFEARRAY*);
};

template <class Interface, class Parent>
struct LinkField {
  HRESULT (Interface::*get)(Parent**);
  HRESULT (Interface::*set)(Parent*);
};

// One row of a field table: the field's name and its getter and setter.
#define HALVORINE_FIELD(Interface, Name) \
  { #Name, &Interface::Get##Name, &Interface::Set##Name }
#define HALVORINE_VALUE_FIELD(Interface, Name, initial) \
  { #Name, &Interface::Get##Name, &Interface::Set##Name, initial }

// The field's text as the getter hands it out: "(null)" for a null copy.
template <class Interface>
std::u16string ReadText(Interface* object, const TextField<Interface>& field) {
  char16_t unwritten[] = u"(unwritten)";
  BSTR out = unwritten;
  EXPECT_EQ((object->*field.get)(&out), S_OK);
  if (out == unwritten) return unwritten;
  const BString copy = BString::Adopt(out);
  return copy.IsNull() ? u"(null)" : std::u16string(copy.View());
}

template <class Interface>
void ExpectTextFamily(const std::vector<TextField<Interface>>& fields) {
  ComPtr<Interface> object = Make<Interface>();
  ASSERT_TRUE(object);
  Interface* o = object.get();
  for (const TextField<Interface>& field : fields) {
    SCOPED_TRACE(field.name);
    EXPECT_EQ((o->*field.get)(nullptr), E_POINTER);
    EXPECT_EQ(ReadText(o, field), u"(null)") << "a text never set reads back as null";
    EXPECT_EQ((o->*field.set)(Text(u"").get()), S_OK);
    EXPECT_EQ(ReadText(o, field), u"") << "empty is not null";
    EXPECT_EQ((o->*field.set)(Text(std::u16string_view(u"1.2\0.3", 6)).get()), S_OK);
    EXPECT_EQ(ReadText(o, field), u"1.2") << "the copy ends at the first NUL";
    char16_t callers[] = u"ABC";
    EXPECT_EQ((o->*field.set)(callers), S_OK);
    callers[0] = u'Z';
    EXPECT_EQ(ReadText(o, field), u"ABC") << "the caller's text reached the field";
    BString first;
    BString second;
    (o->*field.get)(first.Receive());
    (o->*field.get)(second.Receive());
    EXPECT_NE(first.get(), second.get()) << "each get hands out a copy of its own";
    EXPECT_EQ((o->*field.set)(nullptr), S_OK);
    EXPECT_EQ(ReadText(o, field), u"(null)");
  }
  for (const TextField<Interface>& field : fields) {
    const std::string name = field.name;
    (o->*field.set)(Text(std::u16string(name.begin(), name.end())).get());
  }
  for (const TextField<Interface>& field : fields) {
    const std::string name = field.name;
    EXPECT_EQ(ReadText(o, field), std::u16string(name.begin(), name.end()))
        << field.name << " shares its storage with another field";
  }
}

// A value of T that no field starts with and that differs for each index.
template <class T>
T Distinct(std::size_t index) {
  if constexpr (std::is_floating_point_v<T>) {
    return -1000.25 - static_cast<T>(index);
  } else if constexpr (sizeof(T) == 8) {
    return -(T{1} << 40) - static_cast<T>(index);
  } else {
    return static_cast<T>(-1000 - static_cast<int>(index));
  }
}

template <class Interface, class T>
void ExpectValueFamily(const std::vector<ValueField<Interface, T>>& fields) {
  ComPtr<Interface> object = Make<Interface>();
  ASSERT_TRUE(object);
  Interface* o = object.get();
  for (const ValueField<Interface, T>& field : fields) {
    SCOPED_TRACE(field.name);
    EXPECT_EQ((o->*field.get)(nullptr), E_POINTER);
    T value = Distinct<T>(99);
    EXPECT_EQ((o->*field.get)(&value), S_OK);
    EXPECT_EQ(value, field.initial);
    for (T stored : {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(), T{0}}) {
      EXPECT_EQ((o->*field.set)(stored), S_OK);
      (o->*field.get)(&value);
      EXPECT_EQ(value, stored) << "stored with a range check";
    }
  }
  for (std::size_t i = 0; i < fields.size(); ++i) (o->*fields[i].set)(Distinct<T>(i));
  for (std::size_t i = 0; i < fields.size(); ++i) {
    T value{};
    (o->*fields[i].get)(&value);
    EXPECT_EQ(value, Distinct<T>(i)) << fields[i].name << " shares its storage with another field";
  }
}

template <class Interface, class T>
void ExpectPairFamily(const std::vector<PairField<Interface, T>>& fields) {
  ComPtr<Interface> object = Make<Interface>();
  ASSERT_TRUE(object);
  Interface* o = object.get();
  const T sentinel = Distinct<T>(7);
  for (const PairField<Interface, T>& field : fields) {
    SCOPED_TRACE(field.name);
    T x = sentinel;
    T y = sentinel;
    EXPECT_EQ((o->*field.get)(&x, &y), S_OK);
    EXPECT_EQ(x, T{0});
    EXPECT_EQ(y, T{0});
    EXPECT_EQ((o->*field.set)(Distinct<T>(1), Distinct<T>(2)), S_OK);
    x = sentinel;
    y = sentinel;
    EXPECT_EQ((o->*field.get)(&x, nullptr), E_POINTER);
    EXPECT_EQ(x, sentinel) << "the first out was written although the second is null";
    EXPECT_EQ((o->*field.get)(nullptr, &y), E_POINTER);
    EXPECT_EQ(y, sentinel) << "the second out was written although the first is null";
    EXPECT_EQ((o->*field.get)(nullptr, nullptr), E_POINTER);
    EXPECT_EQ((o->*field.get)(&x, &y), S_OK);
    EXPECT_EQ(x, Distinct<T>(1));
    EXPECT_EQ(y, Distinct<T>(2));
  }
}

// The array's elements are counted stand-ins: the record never looks at them.
template <class Interface>
void ExpectArrayFamily(const ArrayField<Interface>& field) {
  CountingUnknown a;
  CountingUnknown b;
  {
    ComPtr<Interface> object = Make<Interface>();
    ASSERT_TRUE(object);
    Interface* o = object.get();
    auto* got = reinterpret_cast<SAFEARRAY*>(&a);
    EXPECT_EQ((o->*field.get)(nullptr), E_POINTER);
    EXPECT_EQ((o->*field.get)(&got), S_OK);
    EXPECT_EQ(got, nullptr) << "a field never set reads back as null";

    SafeArrayPtr callers = ArrayOf({&a, nullptr, &b}, 1);
    EXPECT_EQ((o->*field.set)(callers.get()), S_OK);
    EXPECT_EQ(a.references(), 2u) << "the field's copy holds a reference";
    LONG index = 1;
    SafeArrayPutElement(callers.get(), &index, &b);
    callers = SafeArrayPtr();
    EXPECT_EQ(a.references(), 1u);

    SafeArrayPtr first;
    SafeArrayPtr second;
    EXPECT_EQ((o->*field.get)(first.Receive()), S_OK);
    EXPECT_EQ((o->*field.get)(second.Receive()), S_OK);
    ASSERT_NE(first.get(), nullptr);
    EXPECT_NE(first.get(), second.get()) << "each get hands out a copy of its own";
    const std::vector<IUnknown*> expected = {&a, nullptr, &b};
    EXPECT_EQ(Elements(first.get()), expected) << "a change to the caller's array reached it";
    EXPECT_EQ(Elements(second.get()), expected);
    LONG lower = 0;
    SafeArrayGetLBound(first.get(), 1, &lower);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(a.references(), 3u);
    first = SafeArrayPtr();
    second = SafeArrayPtr();

    EXPECT_EQ((o->*field.set)(ArrayOf({&b}).get()), S_OK);
    EXPECT_EQ(a.references(), 0u) << "the former copy wasn't destroyed";
    EXPECT_EQ(b.references(), 1u);
    EXPECT_EQ((o->*field.set)(nullptr), S_OK);
    EXPECT_EQ(b.references(), 0u);
    got = reinterpret_cast<SAFEARRAY*>(&a);
    EXPECT_EQ((o->*field.get)(&got), S_OK);
    EXPECT_EQ(got, nullptr);

    EXPECT_EQ((o->*field.set)(ArrayOf({&a}).get()), S_OK);
  }
  EXPECT_EQ(a.references(), 0u) << "destroying the object didn't release its children";
}

template <class Interface, class Parent>
void ExpectLinkFamily(const LinkField<Interface, Parent>& field) {
  ComPtr<Interface> object = Make<Interface>();
  ComPtr<Parent> parent = Make<Parent>();
  ASSERT_TRUE(object);
  ASSERT_TRUE(parent);
  Interface* o = object.get();
  Parent* got = parent.get();
  EXPECT_EQ((o->*field.get)(nullptr), E_POINTER);
  EXPECT_EQ((o->*field.get)(&got), S_OK);
  EXPECT_EQ(got, nullptr);
  EXPECT_EQ((o->*field.set)(parent.get()), S_OK);
  EXPECT_EQ((o->*field.get)(&got), S_OK);
  EXPECT_EQ(got, parent.get());
  EXPECT_EQ(References(parent.get()), 1u) << "a back link holds a reference";
  EXPECT_EQ((o->*field.set)(nullptr), S_OK);
  EXPECT_EQ((o->*field.get)(&got), S_OK);
  EXPECT_EQ(got, nullptr);
}

}  // namespace halvorine

#endif  // HALVORINE_TESTS_SERVICE_RECORDFAMILIES_H
