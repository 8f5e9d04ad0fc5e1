// The viewer that a disc carries on request: eleven files copied by name from the folder of the
// host's executable into the output folder, two of them bound to a culture.
#ifndef HALVORINE_WRITING_VIEWERPACKAGE_H
#define HALVORINE_WRITING_VIEWERPACKAGE_H

#include <halvorine/com.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/FileSystem.h"

namespace halvorine {

// How a culture reaches a file's name.
enum CultureRule : std::int32_t {
  kSameName = 0,         // one name for all cultures
  kCultureOrPlain = 1,   // with a culture its name bears it; with none, the plain name
  kCultureRequired = 2,  // with a culture its name bears it; with none, not copied
};

struct ViewerFileEntry {
  std::string name;
  std::int32_t cultureRule;
};

// The process's list, shared by all instances of the service and guarded by no lock. Filled when
// an instance is made and the list is empty (always S_OK), emptied when any instance is
// destroyed: while it is empty, CopyViewerPackage copies nothing.
HRESULT FillViewerFileList();
void EmptyViewerFileList();
const std::vector<ViewerFileEntry>& GetViewerFileList();

// Copies the files of the list, in its order, from sourceFolder into outputFolder, never
// replacing a file. The first copy that fails raises "Failed to copy the Lumbrel file ..." with
// both paths and the platform's error number; the rows behind it aren't tried, and what was
// copied stays.
void CopyViewerPackage(FileSystem& fileSystem, const std::string& sourceFolder,
                       const std::string& outputFolder, const std::string& culture);

// "LumbrelHelp.chm" with the culture "xx" becomes "LumbrelHelp.xx.chm": a point and the culture
// go in front of the path's last point. An empty culture leaves the path.
void InsertCulture(std::string& path, const std::string& culture);

}  // namespace halvorine

#endif  // HALVORINE_WRITING_VIEWERPACKAGE_H
