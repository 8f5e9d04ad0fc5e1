// Any bytes, taken as the bytes of a file, through FileParser and Parse: the answer must be a tree
// or a MyException, never a crash, a hang, another exception or a sanitizer report.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/parsing/FileParser.h"
#include "support/MyException.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Beside the executable, as beside the host's; implicit inputs then read real VRs.
  static const bool loaded = [] {
    DicomEngine::DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
    return true;
  }();
  static_cast<void>(loaded);
  std::string bytes(reinterpret_cast<const char*>(data), size);
  // fmemopen refuses an empty buffer; an empty file is refused by the header check anyway.
  std::FILE* stream = size == 0 ? nullptr : fmemopen(bytes.data(), bytes.size(), "rb");
  if (stream == nullptr) return 0;
  try {
    DicomEngine::FileParser parser;
    parser.Open(stream);
    DicomEngine::DicomData tree(false);
    parser.Parse(tree);
  } catch (const halvorine::MyException&) {
    // An orderly failure is an answer like a tree.
  }
  return 0;
}
