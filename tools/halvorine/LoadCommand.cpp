#include "LoadCommand.h"

#include <halvorine/dicomdir.h>

#include <cstdio>
#include <memory>
#include <string>

#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/OleDate.h"
#include "platform/SafeArrayPtr.h"
#include "platform/TextCodec.h"

namespace halvorine {
namespace {

// A text field as "Name=[value]", the value with its padding; "Name=(null)" for a null one.
template <class Interface>
std::string Field(const char* name, Interface* object, HRESULT (Interface::*get)(BSTR*)) {
  BString value;
  (object->*get)(value.Receive());
  return std::string(" ") + name + "=" +
         (value.IsNull() ? "(null)" : "[" + Utf16ToUtf8(value.View()) + "]");
}

std::string DateText(DATE date) {
  SystemTime t;
  if (date == 0.0 || !VariantTimeToSystemTime(date, &t)) return " Date=(none)";
  char text[64];
  std::snprintf(text, sizeof text, " Date=%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day,
                t.hour, t.minute, t.second);
  return text;
}

class TreePrinter {
 public:
  void PrintArray(SAFEARRAY* array, int level) {
    ForEachElement(array, [&](LONG, IUnknown* object) { PrintObject(object, level); });
  }

 private:
  // The level says which interface a slot holds; a null slot is a record of another type.
  void PrintObject(IUnknown* object, int level) {
    const std::string indent(static_cast<std::size_t>(2 * level), ' ');
    SafeArrayPtr children;
    if (object == nullptr) {
      std::printf("%s(other record)\n", indent.c_str());
      return;
    }
    std::string line;
    if (level == 0) {
      auto* patient = static_cast<IDicomDirPatient*>(object);
      line = "PATIENT" + Field("Name", patient, &IDicomDirPatient::GetDicomPatName) +
             Field("ID", patient, &IDicomDirPatient::GetPatientID);
      patient->GetStudies(children.Receive());
    } else if (level == 1) {
      auto* study = static_cast<IDicomDirStudy*>(object);
      DATE date = 0.0;
      study->GetStudyDate(&date);
      line = "STUDY" + DateText(date) + Field("ID", study, &IDicomDirStudy::GetStudyID) +
             Field("UID", study, &IDicomDirStudy::GetStudyInstUID) +
             Field("Accession", study, &IDicomDirStudy::GetAccessionNr) +
             Field("Description", study, &IDicomDirStudy::GetStudyDescription) +
             Field("Institution", study, &IDicomDirStudy::GetInstitution);
      study->GetSeries(children.Receive());
    } else if (level == 2) {
      auto* series = static_cast<IDicomDirSeries*>(object);
      SHORT number = 0;
      series->GetSeriesNumber(&number);
      line = "SERIES Number=" + std::to_string(number) +
             Field("Modality", series, &IDicomDirSeries::GetModality) +
             Field("UID", series, &IDicomDirSeries::GetSeriesInstUID);
      series->GetImages(children.Receive());
    } else {
      auto* image = static_cast<IDicomDirImage*>(object);
      LONGLONG number = 0;
      image->GetInstanceNumber(&number);
      line = "IMAGE Number=" + std::to_string(number) +
             Field("File", image, &IDicomDirImage::GetImageFilename) +
             Field("SOPClass", image, &IDicomDirImage::GetSOPClassUID) +
             Field("SOPInstance", image, &IDicomDirImage::GetSOPInstanceUID);
    }
    std::printf("%s%s\n", indent.c_str(), line.c_str());
    PrintArray(children.get(), level + 1);
  }
};

std::string FailureDescription() {
  ComPtr<IErrorInfo> error;
  if (GetErrorInfo(0, error.Receive()) != S_OK || !error) return "(no description)";
  BString description;
  error->GetDescription(description.Receive());
  return Utf16ToUtf8(description.View());
}

}  // namespace

int RunLoad(const std::string& folderName, bool quiet) {
  ComPtr<IDicomDirImpl> service;
  HRESULT status =
      CreateUnregisteredComInstance(reinterpret_cast<void**>(service.Receive()), IID_IDicomDirImpl);
  if (FAILED(status)) {
    std::fprintf(stderr, "halvorine: can't make the directory service: 0x%08X\n",
                 static_cast<unsigned>(status));
    return 1;
  }
  const BString folder = BString::Copy(std::u16string_view(Utf8ToUtf16(folderName)));
  SafeArrayPtr patients;
  status = service->LoadDicomDir(folder.get(), patients.Receive());
  if (FAILED(status)) {
    std::fprintf(stderr, "halvorine: load failed (0x%08X): %s\n", static_cast<unsigned>(status),
                 FailureDescription().c_str());
    return 1;
  }
  if (!quiet) TreePrinter().PrintArray(patients.get(), 0);
  return 0;
}

}  // namespace halvorine
