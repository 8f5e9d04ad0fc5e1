// What the service's tests share: objects made the way a host makes them, the calling thread's
// error record, and arrays of references.
#ifndef HALVORINE_TESTS_SERVICE_SERVICETESTSUPPORT_H
#define HALVORINE_TESTS_SERVICE_SERVICETESTSUPPORT_H

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/SafeArrayPtr.h"

namespace halvorine {

// The class and interface identifiers of each class's own interface.
template <class Interface>
struct ClassOf;
#define HALVORINE_CLASS_OF(Name)                        \
  template <>                                           \
  struct ClassOf<I##Name> {                             \
    static constexpr const CLSID& clsid = CLSID_##Name; \
    static constexpr const IID& iid = IID_I##Name;      \
  };
HALVORINE_CLASS_OF(DicomDirImpl)
HALVORINE_CLASS_OF(DicomDirPatient)
HALVORINE_CLASS_OF(DicomDirStudy)
HALVORINE_CLASS_OF(DicomDirSeries)
HALVORINE_CLASS_OF(DicomDirImage)
#undef HALVORINE_CLASS_OF

// The five classes, for tests that run over each.
struct ClassCase {
  const char* name;
  const CLSID& clsid;
  const IID& iid;
};
inline const ClassCase kClasses[] = {
    {"DicomDirImpl", CLSID_DicomDirImpl, IID_IDicomDirImpl},
    {"DicomDirPatient", CLSID_DicomDirPatient, IID_IDicomDirPatient},
    {"DicomDirStudy", CLSID_DicomDirStudy, IID_IDicomDirStudy},
    {"DicomDirSeries", CLSID_DicomDirSeries, IID_IDicomDirSeries},
    {"DicomDirImage", CLSID_DicomDirImage, IID_IDicomDirImage},
};
inline std::string ClassName(const testing::TestParamInfo<ClassCase>& info) {
  return info.param.name;
}

// Asks the class object of clsid for a new instance's riid, as a host does; *out stays null,
// with a test failure, if any step fails.
void MakeObject(REFCLSID clsid, REFIID riid, void** out);

// A new object of the class behind Interface, with the one reference that the caller holds.
template <class Interface>
ComPtr<Interface> Make() {
  ComPtr<Interface> object;
  MakeObject(ClassOf<Interface>::clsid, ClassOf<Interface>::iid,
             reinterpret_cast<void**>(object.Receive()));
  return object;
}

// A wide text as BSTR, counted so that it may hold NULs.
BString Text(std::u16string_view text);

// An array of count null elements from index lower; Put sets one, which adds the array's
// reference; ArrayOf makes an array of the given elements.
SafeArrayPtr ArrayOfSize(ULONG count, LONG lower = 0);
void Put(const SafeArrayPtr& array, LONG index, IUnknown* element);
SafeArrayPtr ArrayOf(std::initializer_list<IUnknown*> elements);

// The description in the calling thread's error record, taken over from GetErrorInfo, or
// "(none)". Checks the fields that every record of the service has: the interface
// IDicomDirImpl, no help file, help context 0, and the source given, which is none while the
// class isn't registered, as in the tests' own registry.
std::u16string TakeFailureDescription(std::u16string_view source = u"(null)");

// Every test of the service leaves no object of the component alive.
class ServiceTest : public testing::Test {
 protected:
  void TearDown() override;
};

}  // namespace halvorine

#endif  // HALVORINE_TESTS_SERVICE_SERVICETESTSUPPORT_H
