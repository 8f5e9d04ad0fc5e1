// Any bytes, taken as a disc's DICOMDIR, through the whole load: parse, index, walk and mapping.
// The answer must be a tree or a MyException, never a crash, a hang, another exception, a leak or
// a sanitizer report. The file lies in a folder of its own, which holds nothing else, so image
// paths resolve against an empty disc.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/SafeArrayPtr.h"
#include "reading/DirectoryReader.h"
#include "service/ComObject.h"
#include "service/DicomDirImage.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace {

constexpr halvorine::RecordCreators kCreators = {
    &halvorine::CreateObject<halvorine::DicomDirPatient>,
    &halvorine::CreateObject<halvorine::DicomDirStudy>,
    &halvorine::CreateObject<halvorine::DicomDirSeries>,
    &halvorine::CreateObject<halvorine::DicomDirImage>};

// The process's folder, gone with the process.
struct Folder {
  Folder() { std::filesystem::create_directories(path); }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }

  const std::string path = (std::filesystem::temp_directory_path() /
                            ("halvorine-reader-fuzz-" + std::to_string(getpid())))
                               .string();
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  const std::string path = folder.path + "/DICOMDIR";
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return 0;
  const bool written = std::fwrite(data, 1, size, file) == size;
  if (std::fclose(file) != 0 || !written) return 0;
  halvorine::RecordOffsetIndex index;
  halvorine::SafeArrayPtr patients;
  try {
    halvorine::DirectoryReader(index, kCreators, halvorine::ToWide(folder.path))
        .ReadDirectory(path, patients.Receive());
  } catch (const halvorine::MyException&) {
    // An orderly failure is an answer like a tree.
  }
  return 0;
}
