// Any bytes, taken as a disc's DICOMDIR, through the whole load: parse, index, walk and mapping.
// The answer must be a tree or a MyException, never a crash, a hang, another exception, a leak or
// a sanitizer report. The file lies in a folder of its own, which holds nothing else, so image
// paths resolve against an empty disc.
//
// The load indexes plain records from their bytes. Its index must be the one made from a whole
// parse of the same file, which makes element objects of every record; a file that this parse
// fails on must fail the load with the same text.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/SafeArrayPtr.h"
#include "reading/DirectoryReader.h"
#include "service/LoadedRecords.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace {

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

// The index from a whole parse, as a load does when the record sequence can't be indexed on the
// way; or the parse's failure.
std::string IndexFromWholeParse(const std::string& path, const std::string& folder,
                                halvorine::RecordOffsetIndex& index) {
  try {
    DicomEngine::FileParser parser;
    DicomEngine::DicomData dataSet(false);
    parser.Open(halvorine::ToWide(path));
    parser.Parse(dataSet);
    const auto* sequence = dynamic_cast<DicomEngine::VRSequence*>(dataSet.Find(0x0004, 0x1220));
    if (sequence == nullptr) return {};
    halvorine::DirectoryReader(index, halvorine::kRecordCreators, halvorine::ToWide(folder))
        .BuildRecordOffsetIndex(
            *sequence, halvorine::DirectoryReader::LocateRecordSequence(dataSet, parser), parser);
  } catch (const halvorine::MyException& failure) {
    return failure.what();
  }
  return {};
}

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
  std::string failure;
  try {
    halvorine::DirectoryReader(index, halvorine::kRecordCreators, halvorine::ToWide(folder.path))
        .ReadDirectory(path, patients.Receive());
  } catch (const halvorine::MyException& raised) {
    // An orderly failure is an answer like a tree.
    failure = raised.what();
  }
  halvorine::RecordOffsetIndex wholeIndex;
  const std::string parseFailure = IndexFromWholeParse(path, folder.path, wholeIndex);
  if (parseFailure.empty() ? index != wholeIndex : failure != parseFailure) std::abort();
  return 0;
}
