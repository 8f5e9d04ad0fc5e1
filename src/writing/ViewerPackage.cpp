#include "writing/ViewerPackage.h"

#include "support/ComponentStatic.h"
#include "support/MyException.h"
#include "writing/WritingCommon.h"

namespace halvorine {
namespace {

constexpr std::size_t kCopyFailureBufferSize = 2048;

std::vector<ViewerFileEntry>& ViewerFileList() {
  return ComponentStatic<std::vector<ViewerFileEntry>>();
}

}  // namespace

HRESULT FillViewerFileList() {
  std::vector<ViewerFileEntry>& list = ViewerFileList();
  if (!list.empty()) return S_OK;
  list = {
      {"Lumbrel.exe", kSameName},
      {"DicomDir.dll", kSameName},
      {"Tessarine.dll", kSameName},
      {"Quorl8.dll", kSameName},
      {"Quorl12.dll", kSameName},
      {"Quorl16.dll", kSameName},
      {"Wavelane.dll", kSameName},
      {"dicom_dictionary.txt", kSameName},
      {"LumbrelAssets.dll", kCultureRequired},
      {"LumbrelHelp.chm", kCultureOrPlain},
      {"autorun.inf", kSameName},
  };
  return S_OK;
}

void EmptyViewerFileList() { ViewerFileList().clear(); }

const std::vector<ViewerFileEntry>& GetViewerFileList() { return ViewerFileList(); }

void CopyViewerPackage(FileSystem& fileSystem, const std::string& sourceFolder,
                       const std::string& outputFolder, const std::string& culture) {
  for (const ViewerFileEntry& entry : ViewerFileList()) {
    std::string source = JoinPath(sourceFolder, entry.name);
    std::string target = JoinPath(outputFolder, entry.name);
    if (entry.cultureRule == kCultureRequired && culture.empty()) continue;
    if (entry.cultureRule != kSameName) {
      InsertCulture(source, culture);
      InsertCulture(target, culture);
    }
    if (const int error = fileSystem.CopyFileNoReplace(source, target); error != 0) {
      const std::string failure = FormatBounded(
          kCopyFailureBufferSize,
          "Failed to copy the Lumbrel file \r\nfrom:%s \r\nto %s\r\nWindows last error=%d",
          source.c_str(), target.c_str(), error);
      Raise(kWriterUnit, __LINE__, "%s", failure.c_str());
    }
  }
}

void InsertCulture(std::string& path, const std::string& culture) {
  if (culture.empty()) return;
  const std::size_t point = path.rfind('.');
  path.insert(point == std::string::npos ? path.size() : point, "." + culture);
}

}  // namespace halvorine
