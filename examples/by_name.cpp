// A host that knows the component by its name alone, "DicomDir.DicomDirImpl": it links the
// platform runtime and no part of the component, which must have been registered first
// (halvorine register /path/to/libdicomdir.so). It loads the disc in the folder that it is given
// and prints its patients, or the failure that the error record describes.
//
//   by_name FOLDER      exit code 0 after a load, 1 after a failure, 2 for a wrong call
#include <halvorine/dicomdir.h>

#include <climits>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <cuchar>
#include <string>

namespace {

// The host's text, in the locale's encoding, as the wide text of the interfaces.
std::u16string Wide(const char* text) {
  std::u16string wide;
  std::mbstate_t state{};
  const char* end = text + std::strlen(text);
  while (text < end) {
    char16_t unit = 0;
    const std::size_t used =
        std::mbrtoc16(&unit, text, static_cast<std::size_t>(end - text), &state);
    if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2)) break;
    if (used != static_cast<std::size_t>(-3)) text += used == 0 ? 1 : used;
    wide += unit;
  }
  return wide;
}

std::string Narrow(const char16_t* text) {
  std::string narrow;
  std::mbstate_t state{};
  char buffer[MB_LEN_MAX];
  for (; text != nullptr && *text != u'\0'; ++text) {
    const std::size_t length = std::c16rtomb(buffer, *text, &state);
    if (length != static_cast<std::size_t>(-1)) narrow.append(buffer, length);
  }
  return narrow;
}

// Prints the calling thread's error record.
void PrintFailure(const char* call, HRESULT status) {
  std::printf("by_name: %s failed with status 0x%08X\n", call, static_cast<unsigned>(status));
  IErrorInfo* record = nullptr;
  if (GetErrorInfo(0, &record) != S_OK) return;
  BSTR source = nullptr;
  BSTR description = nullptr;
  record->GetSource(&source);
  record->GetDescription(&description);
  std::printf("by_name: source %s\nby_name: %s\n", Narrow(source).c_str(),
              Narrow(description).c_str());
  SysFreeString(source);
  SysFreeString(description);
  record->Release();
}

void PrintPatients(SAFEARRAY* patients) {
  LONG lower = 0;
  LONG upper = -1;
  SafeArrayGetLBound(patients, 1, &lower);
  SafeArrayGetUBound(patients, 1, &upper);
  std::printf("by_name: %ld patients\n", static_cast<long>(upper - lower + 1));
  for (LONG i = lower; i <= upper; ++i) {
    IUnknown* element = nullptr;
    IDicomDirPatient* patient = nullptr;
    SafeArrayGetElement(patients, &i, &element);
    if (element == nullptr) continue;
    if (element->QueryInterface(IID_IDicomDirPatient, reinterpret_cast<void**>(&patient)) == S_OK) {
      BSTR id = nullptr;
      BSTR name = nullptr;
      patient->GetPatientID(&id);
      patient->GetDicomPatName(&name);
      std::printf("by_name: %s %s\n", Narrow(id).c_str(), Narrow(name).c_str());
      SysFreeString(id);
      SysFreeString(name);
      patient->Release();
    }
    element->Release();
  }
}

// Loads the disc in folder through a service made by name; gives the exit code.
int Load(IDicomDirImpl* service, const char* folder) {
  BSTR name = SysAllocString(Wide(folder).c_str());
  SAFEARRAY* patients = nullptr;
  const HRESULT status = service->LoadDicomDir(name, &patients);
  SysFreeString(name);
  if (FAILED(status)) {
    PrintFailure("LoadDicomDir", status);
    return 1;
  }
  PrintPatients(patients);
  SafeArrayDestroy(patients);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: by_name FOLDER\n");
    return 2;
  }
  std::setlocale(LC_ALL, "");
  CLSID clsid;
  HRESULT status = CLSIDFromProgID(u"DicomDir.DicomDirImpl", &clsid);
  if (FAILED(status)) {
    std::printf("by_name: DicomDir.DicomDirImpl is not registered (0x%08X)\n",
                static_cast<unsigned>(status));
    return 1;
  }
  IDicomDirImpl* service = nullptr;
  status = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDicomDirImpl,
                            reinterpret_cast<void**>(&service));
  if (FAILED(status)) {
    PrintFailure("CoCreateInstance", status);
    return 1;
  }
  const int exitCode = Load(service, argv[1]);
  service->Release();
  CoFreeUnusedLibraries();
  return exitCode;
}
