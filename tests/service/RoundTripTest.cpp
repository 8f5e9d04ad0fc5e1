// A tree made through the class objects, written by CreateDicomDir and read back by
// LoadDicomDir: every field that both directions carry comes back, and the images are copies.
#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ServiceTestSupport.h"
#include "TempFolder.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

// Texts lose the blank that pads them to even length on the way, so trailing blanks don't count.
std::string Field(BSTR text) {
  std::string narrow = text == nullptr ? "(null)" : ToNarrow(text);
  while (!narrow.empty() && narrow.back() == ' ') narrow.pop_back();
  return narrow;
}

std::string FileBytes(BSTR path) {
  std::ifstream file(ToNarrow(path), std::ios::binary);
  return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(unreadable)";
}

template <class Interface>
std::vector<ComPtr<Interface>> Children(SAFEARRAY* array) {
  std::vector<ComPtr<Interface>> children;
  if (array == nullptr) return children;
  for (IUnknown* element : Elements(array)) {
    children.push_back(ComPtr<Interface>::Share(static_cast<Interface*>(element)));
  }
  return children;
}

// The fields that both directions carry, one line per object, the image's bytes for its path.
std::string Describe(SAFEARRAY* patients) {
  std::string out;
  BString t1, t2, t3, t4, t5, t6;
  for (const auto& p : Children<IDicomDirPatient>(patients)) {
    p->GetDicomPatName(t1.Receive());
    p->GetPatientID(t2.Receive());
    out += "PATIENT " + Field(t1.get()) + "|" + Field(t2.get()) + "\n";
    SafeArrayPtr studies;
    p->GetStudies(studies.Receive());
    for (const auto& s : Children<IDicomDirStudy>(studies.get())) {
      DATE date = 0;
      s->GetStudyDate(&date);
      s->GetAccessionNr(t1.Receive());
      s->GetInstitution(t2.Receive());
      s->GetStudyDescription(t3.Receive());
      s->GetStudyInstUID(t4.Receive());
      s->GetStudyID(t5.Receive());
      out += " STUDY " + std::to_string(date) + "|" + Field(t1.get()) + "|" + Field(t2.get()) +
             "|" + Field(t3.get()) + "|" + Field(t4.get()) + "|" + Field(t5.get()) + "\n";
      SafeArrayPtr series;
      s->GetSeries(series.Receive());
      for (const auto& r : Children<IDicomDirSeries>(series.get())) {
        SHORT number = 0;
        r->GetSeriesNumber(&number);
        r->GetModality(t1.Receive());
        r->GetSeriesInstUID(t2.Receive());
        out += "  SERIES " + std::to_string(number) + "|" + Field(t1.get()) + "|" +
               Field(t2.get()) + "\n";
        SafeArrayPtr images;
        r->GetImages(images.Receive());
        for (const auto& i : Children<IDicomDirImage>(images.get())) {
          LONGLONG instance = 0;
          i->GetInstanceNumber(&instance);
          i->GetSOPClassUID(t1.Receive());
          i->GetSOPInstanceUID(t2.Receive());
          i->GetImageFilename(t6.Receive());
          out += "   IMAGE " + std::to_string(instance) + "|" + Field(t1.get()) + "|" +
                 Field(t2.get()) + "|" + FileBytes(t6.get()) + "\n";
        }
      }
    }
  }
  return out;
}

class RoundTripTest : public ServiceTest {
 protected:
  void TearDown() override {
    kept_.clear();
    ServiceTest::TearDown();
  }

  IDicomDirImage* Image(int n) {
    IDicomDirImage* image = Keep(Make<IDicomDirImage>());
    const std::string path = sources_.Path("source" + std::to_string(n));
    WriteWholeFile(path, "image bytes " + std::to_string(n) + std::string(n, '\0'));
    image->SetImageFilename(Text(ToWide(path)).get());
    image->SetSOPClassUID(Text(u"1.2.840.10008.5.1.4.1.1.7").get());
    image->SetSOPInstanceUID(Text(ToWide("1.2.826.0.1.3680043.10.9." + std::to_string(n))).get());
    image->SetInstanceNumber(n == 3 ? -n : n);
    return image;
  }

  IDicomDirSeries* Series(int n, std::vector<int> images) {
    IDicomDirSeries* series = Keep(Make<IDicomDirSeries>());
    series->SetSeriesNumber(static_cast<SHORT>(n));
    series->SetModality(Text(n % 2 == 0 ? u"MR" : u"CT").get());
    series->SetSeriesInstUID(Text(ToWide("1.2.826.0.1.3680043.10.8." + std::to_string(n))).get());
    std::vector<IDicomDirImage*> children;
    for (int i : images) children.push_back(Image(i));
    SetChildren(
        children, [&](SAFEARRAY* a) { return series->SetImages(a); },
        [&](IDicomDirImage* i) { return i->SetSeries(series); });
    return series;
  }

  IDicomDirStudy* Study(int n, std::vector<IDicomDirSeries*> series) {
    IDicomDirStudy* study = Keep(Make<IDicomDirStudy>());
    study->SetStudyDate(45360.0 + n + 0.5);
    study->SetAccessionNr(Text(ToWide("ACC" + std::to_string(n))).get());
    study->SetInstitution(Text(u"Clinic").get());
    study->SetStudyDescription(Text(ToWide("Study number " + std::to_string(n))).get());
    study->SetStudyInstUID(Text(ToWide("1.2.826.0.1.3680043.10.7." + std::to_string(n))).get());
    study->SetStudyID(Text(ToWide("S" + std::to_string(n))).get());
    SetChildren(
        series, [&](SAFEARRAY* a) { return study->SetSeries(a); },
        [&](IDicomDirSeries* s) { return s->SetStudy(study); });
    return study;
  }

  IDicomDirPatient* Patient(const char16_t* name, std::vector<IDicomDirStudy*> studies) {
    IDicomDirPatient* patient = Keep(Make<IDicomDirPatient>());
    patient->SetDicomPatName(Text(name).get());
    patient->SetPatientID(Text(std::u16string(name) + u"-ID").get());
    SetChildren(
        studies, [&](SAFEARRAY* a) { return patient->SetStudies(a); },
        [&](IDicomDirStudy* s) { return s->SetPatient(patient); });
    return patient;
  }

  template <class Child, class SetArray, class SetParent>
  static void SetChildren(const std::vector<Child*>& children, SetArray setArray,
                          SetParent setParent) {
    SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(children.size())));
    for (LONG i = 0; i < static_cast<LONG>(children.size()); ++i) {
      EXPECT_EQ(setParent(children[static_cast<std::size_t>(i)]), S_OK);
      EXPECT_EQ(SafeArrayPutElement(array.get(), &i, children[static_cast<std::size_t>(i)]), S_OK);
    }
    EXPECT_EQ(setArray(array.get()), S_OK);
  }

  // The tree's objects stay alive through the test; the arrays hold references of their own.
  template <class Interface>
  Interface* Keep(ComPtr<Interface> object) {
    Interface* raw = object.get();
    kept_.push_back(ComPtr<IUnknown>::Adopt(object.Detach()));
    return raw;
  }

  TempFolder sources_;
  std::vector<ComPtr<IUnknown>> kept_;
};

TEST_F(RoundTripTest, EveryCarriedFieldAndEveryImageComesBack) {
  auto first = Patient(u"Doe^Jane", {Study(1, {Series(1, {1, 2, 3}), Series(2, {4})}),
                                     Study(2, {Series(3, {5, 6})})});
  auto second = Patient(u"Roe^Richard", {Study(3, {Series(4, {7, 8, 9, 10})})});
  SafeArrayPtr patients = ArrayOf({first, second});
  const std::string expected = Describe(patients.get());
  ASSERT_EQ(std::count(expected.begin(), expected.end(), '\n'), 2 + 3 + 4 + 10) << expected;

  TempFolder target;
  auto service = Make<IDicomDirImpl>();
  BString output;
  ASSERT_EQ(service->CreateDicomDir(Text(ToWide(target.Path())).get(), Text(u"RT").get(),
                                    patients.get(), output.Receive(), VARIANT_FALSE, nullptr),
            S_OK)
      << ToNarrow(TakeFailureDescription());
  SafeArrayPtr loaded;
  ASSERT_EQ(service->LoadDicomDir(output.get(), loaded.Receive()), S_OK)
      << ToNarrow(TakeFailureDescription());
  EXPECT_EQ(Describe(loaded.get()), expected);
}

}  // namespace
}  // namespace halvorine
