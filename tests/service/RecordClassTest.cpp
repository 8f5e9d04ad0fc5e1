#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"
#include "service/LoadedRecords.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

// Every field of a family shares its getter and setter, so a family's behaviour is shown once on
// one field; for every field, only its wiring: the value it starts with, and storage of its own.
namespace halvorine {
namespace {

using RecordClassTest = ServiceTest;
using I = IDicomDirImage;
using P = IDicomDirPatient;
using St = IDicomDirStudy;
using Se = IDicomDirSeries;

template <class Interface, class T>
struct Field {
  const char* name;
  HRESULT (Interface::*get)(T*);
  HRESULT (Interface::*set)(T);
  T initial{};
};

#define F(Interface, Name, ...) \
  { #Name, &Interface::Get##Name, &Interface::Set##Name __VA_OPT__(, ) __VA_ARGS__ }

// The text as the getter hands it out, "(null)" for a null copy.
template <class Interface>
std::u16string ReadText(Interface* object, HRESULT (Interface::*get)(BSTR*)) {
  BString out;
  EXPECT_EQ((object->*get)(out.Receive()), S_OK);
  return out.IsNull() ? u"(null)" : std::u16string(out.View());
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

template <class Interface>
void ExpectTexts(std::initializer_list<Field<Interface, BSTR>> fields) {
  ComPtr<Interface> object = Make<Interface>();
  ASSERT_TRUE(object);
  for (const auto& f : fields) EXPECT_EQ(ReadText(object.get(), f.get), u"(null)") << f.name;
  for (const auto& f : fields) (object.get()->*f.set)(Text(ToWide(f.name)).get());
  for (const auto& f : fields) EXPECT_EQ(ReadText(object.get(), f.get), ToWide(f.name)) << f.name;
}

template <class Interface, class T>
void ExpectValues(std::initializer_list<Field<Interface, T>> fields) {
  ComPtr<Interface> object = Make<Interface>();
  ASSERT_TRUE(object);
  T value{};
  for (const auto& f : fields) {
    EXPECT_EQ((object.get()->*f.get)(nullptr), E_POINTER) << f.name;
    value = Distinct<T>(99);
    EXPECT_EQ((object.get()->*f.get)(&value), S_OK);
    EXPECT_EQ(value, f.initial) << f.name;
  }
  std::size_t i = 0;
  for (const auto& f : fields) (object.get()->*f.set)(Distinct<T>(i++));
  i = 0;
  for (const auto& f : fields) {
    (object.get()->*f.get)(&value);
    EXPECT_EQ(value, Distinct<T>(i++)) << f.name;
  }
}

TEST_F(RecordClassTest, EveryFieldStartsEmptyAndHasStorageOfItsOwn) {
  ExpectTexts<I>({F(I, SOPInstanceUID), F(I, SOPClassUID), F(I, ImageFilename),
                  F(I, TransferSyntaxUID), F(I, ImageType), F(I, PhotometricInterpretation),
                  F(I, LossyImageCompression), F(I, ImagePositionPatient),
                  F(I, ImageOrientationPatient), F(I, PresentationIntentType),
                  F(I, ConvolutionKernel), F(I, Manufacturer), F(I, RescaleType),
                  F(I, ContrastBolusAgent), F(I, ShutterShape), F(I, VerticesOfPolygonalShutter)});
  ExpectValues<I, LONGLONG>({F(I, InstanceNumber)});
  ExpectValues<I, SHORT>({F(I, ImageRows), F(I, ImageColumns), F(I, NumberOfFrames), F(I, FrameIdx),
                          F(I, SamplesPerPixel), F(I, PlanarConfiguration), F(I, BitsAllocated),
                          F(I, BitsStored), F(I, HighBit), F(I, PixelRepresentation),
                          F(I, ShutterLeftVerticalEdge), F(I, ShutterRightVerticalEdge),
                          F(I, ShutterUpperHorizontalEdge), F(I, ShutterLowerHorizontalEdge),
                          F(I, RadiusOfCircularShutter)});
  ExpectValues<I, LONG>({F(I, WindowCenter), F(I, WindowWidth), F(I, ShutterPresentationValue)});
  ExpectValues<I, double>({F(I, ImageAcquisitionDateTime), F(I, ImagerPixelSpacing),
                           F(I, LossyImageCompressionRatio), F(I, SliceThickness),
                           F(I, SpacingBetweenSlices), F(I, SliceLocation), F(I, RescaleIntercept),
                           F(I, RescaleSlope, 1.0)});
  ExpectValues<I, VARIANT_BOOL>({F(I, PrivateFileCopy), F(I, DicomDir, VARIANT_TRUE)});
  ExpectTexts<P>({F(P, PatientID), F(P, DicomPatName), F(P, PatientSex)});
  ExpectTexts<St>({F(St, StudyInstUID), F(St, StudyID), F(St, AccessionNr), F(St, StudyDescription),
                   F(St, Institution)});
  ExpectValues<St, DATE>({F(St, StudyDate)});
  ExpectTexts<Se>({F(Se, SeriesInstUID), F(Se, Modality), F(Se, SeriesDescription)});
  ExpectValues<Se, SHORT>({F(Se, SeriesNumber)});
  ExpectValues<Se, DATE>({F(Se, SeriesDateTime)});
}

TEST_F(RecordClassTest, TextsAreCopiesUpToTheFirstNulAndNullStaysApartFromEmpty) {
  ComPtr<P> patient = Make<P>();
  ASSERT_TRUE(patient);
  const auto read = [&] { return ReadText(patient.get(), &P::GetPatientID); };
  EXPECT_EQ(patient->GetPatientID(nullptr), E_POINTER);
  EXPECT_EQ(patient->SetPatientID(Text(u"").get()), S_OK);
  EXPECT_EQ(read(), u"");
  EXPECT_EQ(patient->SetPatientID(Text(std::u16string_view(u"1.2\0.3", 6)).get()), S_OK);
  EXPECT_EQ(read(), u"1.2");
  char16_t callers[] = u"ABC";
  EXPECT_EQ(patient->SetPatientID(callers), S_OK);
  callers[0] = u'Z';
  EXPECT_EQ(read(), u"ABC") << "the caller's text reached the field";
  EXPECT_EQ(patient->SetPatientID(nullptr), S_OK);
  EXPECT_EQ(read(), u"(null)");
  // Every unit comes back as it was set, on either side of 256, a lone surrogate too.
  const std::u16string texts[] = {u"\u00FF\u0080A\u0001", u"\u00FFA\u0100", u"\uFFFF",
                                  std::u16string(1, u'\xD800') + u"x"};
  for (const std::u16string& text : texts) {
    EXPECT_EQ(patient->SetPatientID(Text(text).get()), S_OK);
    EXPECT_EQ(read(), text);
  }
}

// A loaded record's object holds each text as its setter holds the text's UTF-16 form: ASCII, a
// text beyond it, one cut at a NUL, an empty one; an absent text stays null, an absent number at
// its start. Each field lands in its own place.
TEST_F(RecordClassTest, LoadedObjectsHoldWhatTheirSettersWould) {
  const std::string texts[] = {"1.2.840 ",
                               std::string("ab\0cd", 5),
                               "M\xC3\xBCller",
                               "\xF0\x9D\x84\x9E",
                               "\xFF\xC3("
                               "a\xC4",
                               ""};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    ComPtr<P> patient;
    ASSERT_EQ(DicomDirPatient::Create({text, std::nullopt}, patient.Receive()), S_OK);
    EXPECT_EQ(ReadText(patient.get(), &P::GetDicomPatName), ToWide(text));
    EXPECT_EQ(ReadText(patient.get(), &P::GetPatientID), u"(null)");
  }
  ComPtr<St> study;
  ASSERT_EQ(DicomDirStudy::Create({2.5, "acc", "descr", "inst", "1.2", "id"}, study.Receive()),
            S_OK);
  DATE date = 0.0;
  study->GetStudyDate(&date);
  EXPECT_EQ(date, 2.5);
  EXPECT_EQ(ReadText(study.get(), &St::GetAccessionNr), u"acc");
  EXPECT_EQ(ReadText(study.get(), &St::GetStudyDescription), u"descr");
  EXPECT_EQ(ReadText(study.get(), &St::GetInstitution), u"inst");
  EXPECT_EQ(ReadText(study.get(), &St::GetStudyInstUID), u"1.2");
  EXPECT_EQ(ReadText(study.get(), &St::GetStudyID), u"id");
  ComPtr<Se> series;
  ASSERT_EQ(DicomDirSeries::Create({"MR", "1.3", std::nullopt}, series.Receive()), S_OK);
  EXPECT_EQ(ReadText(series.get(), &Se::GetModality), u"MR");
  EXPECT_EQ(ReadText(series.get(), &Se::GetSeriesInstUID), u"1.3");
  ComPtr<I> image;
  ASSERT_EQ(DicomDirImage::Create({"/d/IM1", "1.4", "1.5", -7}, image.Receive()), S_OK);
  EXPECT_EQ(ReadText(image.get(), &I::GetImageFilename), u"/d/IM1");
  EXPECT_EQ(ReadText(image.get(), &I::GetSOPClassUID), u"1.4");
  EXPECT_EQ(ReadText(image.get(), &I::GetSOPInstanceUID), u"1.5");
  SHORT seriesNumber = 1;
  LONGLONG instanceNumber = 0;
  series->GetSeriesNumber(&seriesNumber);
  image->GetInstanceNumber(&instanceNumber);
  EXPECT_EQ(seriesNumber, 0);
  EXPECT_EQ(instanceNumber, -7);
  // A loaded text lies in the object's own allocation: a setter that replaces it, or makes it
  // null, leaves that storage to the object and the texts beside it as they were.
  EXPECT_EQ(image->SetImageFilename(Text(u"/e/IM22").get()), S_OK);
  EXPECT_EQ(image->SetSOPClassUID(nullptr), S_OK);
  EXPECT_EQ(ReadText(image.get(), &I::GetImageFilename), u"/e/IM22");
  EXPECT_EQ(ReadText(image.get(), &I::GetSOPClassUID), u"(null)");
  EXPECT_EQ(ReadText(image.get(), &I::GetSOPInstanceUID), u"1.5");
}

// The three pairs start at zero and keep their own values, and write neither out unless they
// can write both; DicomDir's true is all bits set.
TEST_F(RecordClassTest, PairsAndTheImagesOwnCalls) {
  ComPtr<I> image = Make<I>();
  ASSERT_TRUE(image);
  const auto read = [&] {
    double d[4] = {7.0, 7.0, 7.0, 7.0};
    SHORT center[2] = {7, 7};
    image->GetPixelSpacing(&d[0], &d[1]);
    image->GetPixelAspectRatio(&d[2], &d[3]);
    image->GetCenterOfCircularShutter(&center[0], &center[1]);
    return std::vector<double>{d[0], d[1], d[2], d[3], double(center[0]), double(center[1])};
  };
  EXPECT_EQ(read(), std::vector<double>(6, 0.0));
  image->SetPixelSpacing(1.5, 2.5);
  image->SetPixelAspectRatio(3.5, 4.5);
  image->SetCenterOfCircularShutter(5, 6);
  EXPECT_EQ(read(), (std::vector<double>{1.5, 2.5, 3.5, 4.5, 5.0, 6.0}));
  double d[2] = {7.0, 7.0};
  EXPECT_EQ(image->GetPixelSpacing(&d[0], nullptr), E_POINTER);
  EXPECT_EQ(image->GetPixelSpacing(nullptr, &d[1]), E_POINTER);
  EXPECT_EQ(image->GetPixelSpacing(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(d[0] + d[1], 14.0) << "an out was written although the other is null";
  VARIANT_BOOL flag = 0;
  image->GetDicomDir(&flag);
  EXPECT_EQ(static_cast<std::uint16_t>(flag), 0xFFFF);
  int someWindow = 0;
  for (void* handle : {static_cast<void*>(nullptr), static_cast<void*>(&someWindow),
                       reinterpret_cast<void*>(~std::uintptr_t{0})}) {
    flag = VARIANT_TRUE;
    EXPECT_EQ(image->IsTagged(handle, &flag), S_OK);
    EXPECT_EQ(flag, VARIANT_FALSE) << "IsTagged is false for any handle";
  }
  EXPECT_EQ(image->IsTagged(nullptr, nullptr), E_POINTER);
}

// The elements are counted stand-ins: the record never looks at them.
TEST_F(RecordClassTest, ArraysAreCopiesThatHoldTheirElements) {
  CountingUnknown a, b;
  {
    ComPtr<P> patient = Make<P>();
    ASSERT_TRUE(patient);
    EXPECT_EQ(patient->GetStudies(nullptr), E_POINTER);
    SafeArrayPtr callers = ArrayOf({&a, nullptr, &b});
    EXPECT_EQ(patient->SetStudies(callers.get()), S_OK);
    EXPECT_EQ(a.references(), 2u) << "the field's copy holds a reference";
    LONG index = 0;
    SafeArrayPutElement(callers.get(), &index, &b);
    callers = SafeArrayPtr();
    SafeArrayPtr first, second;
    EXPECT_EQ(patient->GetStudies(first.Receive()), S_OK);
    EXPECT_EQ(patient->GetStudies(second.Receive()), S_OK);
    std::vector<IUnknown*> elements;
    ForEachElement(first.get(), [&](LONG, IUnknown* element) { elements.push_back(element); });
    EXPECT_EQ(elements, (std::vector<IUnknown*>{&a, nullptr, &b}));
    EXPECT_EQ(a.references(), 3u) << "each get hands out a copy of its own";
    first = SafeArrayPtr();
    second = SafeArrayPtr();
    EXPECT_EQ(patient->SetStudies(ArrayOf({&b}).get()), S_OK);
    EXPECT_EQ(a.references(), 0u) << "the former copy wasn't destroyed";
    EXPECT_EQ(patient->SetStudies(nullptr), S_OK);
    EXPECT_EQ(b.references(), 0u);
    auto* got = reinterpret_cast<SAFEARRAY*>(&a);
    EXPECT_EQ(patient->GetStudies(&got), S_OK);
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(patient->SetStudies(ArrayOf({&a}).get()), S_OK);
  }
  EXPECT_EQ(a.references(), 0u) << "destroying the object didn't release its children";
}

// patient -> study -> series -> image, each child with its back link, held by the root array
// alone: releasing it frees the tree, but a study held elsewhere outlives its patient. A back
// link that held a reference would keep the tree alive. The series' SetCalibration stores
// nothing, in the series or its images.
TEST_F(RecordClassTest, TheRootArrayHoldsTheTreeAndBackLinksHoldNothing) {
  for (const bool holdStudy : {false, true}) {
    ComPtr<P> patient = Make<P>();
    ComPtr<St> study = Make<St>();
    ComPtr<Se> series = Make<Se>();
    ComPtr<I> image = Make<I>();
    ASSERT_TRUE(patient && study && series && image);
    IDicomDirSeries* noSeries = series.get();
    EXPECT_EQ(image->GetSeries(&noSeries), S_OK);
    EXPECT_EQ(noSeries, nullptr);
    image->SetSeries(series.get());
    series->SetImages(ArrayOf({image.get()}).get());
    EXPECT_EQ(series->SetCalibration(2.0, 3.0), E_NOTIMPL);
    double x = 1.0, y = 1.0;
    image->GetPixelSpacing(&x, &y);
    EXPECT_EQ(x + y, 0.0) << "the calibration reached the image";
    series->SetStudy(study.get());
    study->SetSeries(ArrayOf({series.get()}).get());
    study->SetPatient(patient.get());
    study->SetStudyInstUID(Text(u"1.2.3").get());
    patient->SetStudies(ArrayOf({study.get()}).get());
    SafeArrayPtr patients = ArrayOf({patient.get()});
    IDicomDirPatient* const held = patient.Detach();
    held->Release();
    image = ComPtr<I>();
    series = ComPtr<Se>();
    if (!holdStudy) study = ComPtr<St>();
    EXPECT_EQ(ModuleLock::Count(), 4);
    IDicomDirPatient* backLink = nullptr;
    if (holdStudy) {
      ASSERT_EQ(study->GetPatient(&backLink), S_OK);
    }
    EXPECT_EQ(backLink, holdStudy ? held : nullptr);
    patients = SafeArrayPtr();
    EXPECT_EQ(ModuleLock::Count(), holdStudy ? 3 : 0) << "only the patient should be gone";
    if (!holdStudy) continue;
    EXPECT_EQ(ReadText(study.get(), &St::GetStudyInstUID), u"1.2.3");
    study = ComPtr<St>();
    EXPECT_EQ(ModuleLock::Count(), 0);
  }
}

}  // namespace
}  // namespace halvorine
