// A small host of the component: it makes the four record classes through their class objects,
// builds a tree of two patients, reads it back, releases it from the top, and checks that the
// component may then be unloaded. Exits with 1 on any mismatch.
#include <halvorine/dicomdir.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

struct ImageData {
  const char16_t* sopInstanceUid;
  LONGLONG instanceNumber;
  const char16_t* fileName;
};

struct SeriesData {
  const char16_t* seriesInstUid;
  const char16_t* modality;
  SHORT seriesNumber;
  std::vector<ImageData> images;
};

struct StudyData {
  const char16_t* studyInstUid;
  const char16_t* studyId;
  DATE studyDate;
  std::vector<SeriesData> series;
};

struct PatientData {
  const char16_t* patientId;
  const char16_t* name;
  const char16_t* sex;
  std::vector<StudyData> studies;
};

const std::vector<PatientData> kPatients = {
    {u"P001",
     u"Doe^Jane",
     u"F",
     {{u"1.2.826.0.1.1",
       u"S1",
       45000.5,
       {{u"1.2.826.0.1.1.1",
         u"CT",
         1,
         {{u"1.2.826.0.1.1.1.1", 1, u"/data/ct1"}, {u"1.2.826.0.1.1.1.2", 2, u"/data/ct2"}}},
        {u"1.2.826.0.1.1.2", u"SR", 2, {}}}},
      {u"1.2.826.0.1.2", u"S2", 45100.0, {}}}},
    {u"P002",
     u"Roe^John",
     u"M",
     {{u"1.2.826.0.2.1",
       u"",
       0.0,
       {{u"1.2.826.0.2.1.1", u"MR", -3, {{u"1.2.826.0.2.1.1.1", 7, u"/data/mr7"}}}}}}},
};

int mismatches = 0;

void Check(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "two_patients: %s\n", what);
  ++mismatches;
}

// A BSTR for the length of one call.
class Text {
 public:
  explicit Text(const char16_t* text) : text_(SysAllocString(text)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(text_); }
  operator BSTR() const { return text_; }

 private:
  BSTR text_;
};

// The text that a getter hands out; the copy is freed here.
template <class Object>
std::u16string Read(Object* object, HRESULT (Object::*get)(BSTR*)) {
  BSTR text = nullptr;
  Check((object->*get)(&text) == S_OK, "a text getter failed");
  std::u16string copy = text == nullptr ? u"(null)" : text;
  SysFreeString(text);
  return copy;
}

template <class Interface>
Interface* Create(REFCLSID clsid, REFIID iid) {
  IClassFactory* factory = nullptr;
  if (DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)) != S_OK) {
    return nullptr;
  }
  Interface* object = nullptr;
  factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(&object));
  factory->Release();
  return object;
}

// An array that takes over the host's references to the objects.
template <class Object>
SAFEARRAY* HandOver(const std::vector<Object*>& objects) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(objects.size()));
  Check(array != nullptr, "an array wasn't made");
  for (LONG i = 0; i < static_cast<LONG>(objects.size()); ++i) {
    Check(SafeArrayPutElement(array, &i, objects[i]) == S_OK, "an element wasn't put");
    objects[i]->Release();
  }
  return array;
}

// The parent keeps a copy of the array, which holds the children from now on.
template <class Parent, class Child>
void Adopt(Parent* parent, HRESULT (Parent::*set)(SAFEARRAY*),
           const std::vector<Child*>& children) {
  SAFEARRAY* array = HandOver(children);
  Check((parent->*set)(array) == S_OK, "an array setter failed");
  SafeArrayDestroy(array);
}

// The elements of an array, each asked for the child's interface; the caller releases them.
template <class Child>
std::vector<Child*> Children(SAFEARRAY* array, REFIID iid) {
  std::vector<Child*> children;
  LONG lower = 0;
  LONG upper = -1;
  if (array != nullptr) {
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
  }
  for (LONG i = lower; i <= upper; ++i) {
    IUnknown* element = nullptr;
    Child* child = nullptr;
    SafeArrayGetElement(array, &i, &element);
    Check(element != nullptr &&
              element->QueryInterface(iid, reinterpret_cast<void**>(&child)) == S_OK,
          "an element isn't of the child's class");
    if (element != nullptr) element->Release();
    if (child != nullptr) children.push_back(child);
  }
  return children;
}

IDicomDirImage* BuildImage(const ImageData& data, IDicomDirSeries* series) {
  auto* image = Create<IDicomDirImage>(CLSID_DicomDirImage, IID_IDicomDirImage);
  if (image == nullptr) return nullptr;
  image->SetSOPInstanceUID(Text(data.sopInstanceUid));
  image->SetInstanceNumber(data.instanceNumber);
  image->SetImageFilename(Text(data.fileName));
  image->SetSeries(series);
  return image;
}

template <class Data, class Parent, class Child>
std::vector<Child*> BuildAll(const std::vector<Data>& data, Parent* parent,
                             Child* (*build)(const Data&, Parent*)) {
  std::vector<Child*> children;
  for (const Data& item : data) {
    Child* child = build(item, parent);
    Check(child != nullptr, "an object wasn't made");
    if (child != nullptr) children.push_back(child);
  }
  return children;
}

IDicomDirSeries* BuildSeries(const SeriesData& data, IDicomDirStudy* study) {
  auto* series = Create<IDicomDirSeries>(CLSID_DicomDirSeries, IID_IDicomDirSeries);
  if (series == nullptr) return nullptr;
  series->SetSeriesInstUID(Text(data.seriesInstUid));
  series->SetModality(Text(data.modality));
  series->SetSeriesNumber(data.seriesNumber);
  series->SetStudy(study);
  Adopt(series, &IDicomDirSeries::SetImages, BuildAll(data.images, series, BuildImage));
  return series;
}

IDicomDirStudy* BuildStudy(const StudyData& data, IDicomDirPatient* patient) {
  auto* study = Create<IDicomDirStudy>(CLSID_DicomDirStudy, IID_IDicomDirStudy);
  if (study == nullptr) return nullptr;
  study->SetStudyInstUID(Text(data.studyInstUid));
  study->SetStudyID(Text(data.studyId));
  study->SetStudyDate(data.studyDate);
  study->SetPatient(patient);
  Adopt(study, &IDicomDirStudy::SetSeries, BuildAll(data.series, study, BuildSeries));
  return study;
}

IDicomDirPatient* BuildPatient(const PatientData& data) {
  auto* patient = Create<IDicomDirPatient>(CLSID_DicomDirPatient, IID_IDicomDirPatient);
  if (patient == nullptr) return nullptr;
  patient->SetPatientID(Text(data.patientId));
  patient->SetDicomPatName(Text(data.name));
  patient->SetPatientSex(Text(data.sex));
  Adopt(patient, &IDicomDirPatient::SetStudies, BuildAll(data.studies, patient, BuildStudy));
  return patient;
}

void CheckImage(IDicomDirImage* image, const ImageData& data, IDicomDirSeries* series) {
  Check(Read(image, &IDicomDirImage::GetSOPInstanceUID) == data.sopInstanceUid, "image UID");
  Check(Read(image, &IDicomDirImage::GetImageFilename) == data.fileName, "image file name");
  Check(Read(image, &IDicomDirImage::GetTransferSyntaxUID) == u"(null)", "unset text not null");
  LONGLONG number = 0;
  double slope = 0.0;
  image->GetInstanceNumber(&number);
  image->GetRescaleSlope(&slope);
  Check(number == data.instanceNumber, "instance number");
  Check(slope == 1.0, "rescale slope default");
  IDicomDirSeries* parent = nullptr;
  image->GetSeries(&parent);
  Check(parent == series, "image back link");
}

// Reads the children of parent back through get and checks each against its data.
template <class Parent, class Child, class Data>
void CheckChildren(Parent* parent, HRESULT (Parent::*get)(SAFEARRAY**), REFIID iid,
                   const std::vector<Data>& data, void (*check)(Child*, const Data&, Parent*)) {
  SAFEARRAY* array = nullptr;
  Check((parent->*get)(&array) == S_OK, "an array getter failed");
  const std::vector<Child*> children = Children<Child>(array, iid);
  SafeArrayDestroy(array);
  Check(children.size() == data.size(), "number of children");
  for (std::size_t i = 0; i < children.size() && i < data.size(); ++i) {
    check(children[i], data[i], parent);
  }
  for (Child* child : children) child->Release();
}

void CheckSeries(IDicomDirSeries* series, const SeriesData& data, IDicomDirStudy* study) {
  Check(Read(series, &IDicomDirSeries::GetSeriesInstUID) == data.seriesInstUid, "series UID");
  Check(Read(series, &IDicomDirSeries::GetModality) == data.modality, "modality");
  SHORT number = 0;
  series->GetSeriesNumber(&number);
  Check(number == data.seriesNumber, "series number");
  IDicomDirStudy* parent = nullptr;
  series->GetStudy(&parent);
  Check(parent == study, "series back link");
  CheckChildren(series, &IDicomDirSeries::GetImages, IID_IDicomDirImage, data.images, CheckImage);
}

void CheckStudy(IDicomDirStudy* study, const StudyData& data, IDicomDirPatient* patient) {
  Check(Read(study, &IDicomDirStudy::GetStudyInstUID) == data.studyInstUid, "study UID");
  Check(Read(study, &IDicomDirStudy::GetStudyID) == data.studyId, "study ID");
  DATE date = -1.0;
  study->GetStudyDate(&date);
  Check(date == data.studyDate, "study date");
  IDicomDirPatient* parent = nullptr;
  study->GetPatient(&parent);
  Check(parent == patient, "study back link");
  CheckChildren(study, &IDicomDirStudy::GetSeries, IID_IDicomDirSeries, data.series, CheckSeries);
}

void CheckPatient(IDicomDirPatient* patient, const PatientData& data) {
  Check(Read(patient, &IDicomDirPatient::GetPatientID) == data.patientId, "patient ID");
  Check(Read(patient, &IDicomDirPatient::GetDicomPatName) == data.name, "patient name");
  Check(Read(patient, &IDicomDirPatient::GetPatientSex) == data.sex, "patient sex");
  CheckChildren(patient, &IDicomDirPatient::GetStudies, IID_IDicomDirStudy, data.studies,
                CheckStudy);
}

// The array of patients, which alone holds the tree.
SAFEARRAY* BuildTree() {
  std::vector<IDicomDirPatient*> patients;
  for (const PatientData& data : kPatients) {
    IDicomDirPatient* patient = BuildPatient(data);
    Check(patient != nullptr, "a patient wasn't made");
    if (patient != nullptr) patients.push_back(patient);
  }
  return HandOver(patients);
}

void CheckTree(SAFEARRAY* root) {
  const std::vector<IDicomDirPatient*> patients =
      Children<IDicomDirPatient>(root, IID_IDicomDirPatient);
  Check(patients.size() == kPatients.size(), "number of patients");
  for (std::size_t i = 0; i < patients.size() && i < kPatients.size(); ++i) {
    CheckPatient(patients[i], kPatients[i]);
  }
  for (IDicomDirPatient* patient : patients) patient->Release();
}

}  // namespace

int main() {
  Check(DllCanUnloadNow() == S_OK, "the component is in use before the first object");
  SAFEARRAY* root = BuildTree();
  CheckTree(root);
  Check(DllCanUnloadNow() == S_FALSE, "the component may be unloaded while the tree lives");
  SafeArrayDestroy(root);
  Check(DllCanUnloadNow() == S_OK, "objects outlived the root array");
  if (mismatches != 0) return 1;
  std::printf("two_patients: a tree of %zu patients read back as built\n", kPatients.size());
  return 0;
}
