#include "ServerExport.h"

#include <halvorine/com.h>

#include <dlfcn.h>

#include <cstdio>
#include <string>

#include "platform/TextCodec.h"

namespace halvorine {
namespace {

using ServerExport = HRESULT (*)();

// The description of the calling thread's error record, or an empty text.
std::u16string TakeErrorDescription() {
  IErrorInfo* record = nullptr;
  if (GetErrorInfo(0, &record) != S_OK || record == nullptr) return {};
  BSTR description = nullptr;
  record->GetDescription(&description);
  std::u16string text = description == nullptr ? u"" : description;
  SysFreeString(description);
  record->Release();
  return text;
}

}  // namespace

int CallServerExport(const std::string& path, const char* exportName) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::fprintf(stderr, "halvorine: can't load %s: %s\n", path.c_str(), dlerror());
    return 1;
  }
  auto call = reinterpret_cast<ServerExport>(dlsym(library, exportName));
  if (call == nullptr) {
    std::fprintf(stderr, "halvorine: %s has no %s\n", path.c_str(), exportName);
    dlclose(library);
    return 1;
  }
  SetErrorInfo(0, nullptr);
  const HRESULT status = call();
  const std::u16string description = FAILED(status) ? TakeErrorDescription() : u"";
  dlclose(library);
  if (SUCCEEDED(status)) {
    std::printf("%s in %s succeeded (0x%08X)\n", exportName, path.c_str(),
                static_cast<unsigned>(status));
    return 0;
  }
  std::fprintf(stderr, "%s in %s failed with status 0x%08X\n", exportName, path.c_str(),
               static_cast<unsigned>(status));
  if (!description.empty()) std::fprintf(stderr, "%s\n", Utf16ToUtf8(description).c_str());
  return 1;
}

}  // namespace halvorine
