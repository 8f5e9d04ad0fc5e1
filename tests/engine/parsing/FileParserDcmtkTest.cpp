// The files of fuzz/make_corpus.sh, made by dcmtk in each encoding that dcmconv writes (tools/
// setup.sh installs it), parsed here and listed by dcmdump: both must show the same tags in the
// same order, with the same VRs, lengths and values. The same files, cut, with bytes flipped and
// with lengths inflated, must give a tree or a MyException, and no allocation larger than a few
// times the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/parsing/FileParser.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace {

// The largest single request to operator new while counting is on.
bool counting = false;
std::size_t largestRequest = 0;

void* Allocate(std::size_t size) noexcept {
  if (counting) largestRequest = std::max(largestRequest, size);
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// Every replaceable form, so that none is left to a sanitizer's own allocator: they pair malloc
// with free, as the default ones do.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(std::size_t size) {
  if (void* block = Allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace DicomEngine {
namespace {

const char* const kVariants[] = {"explicit-defined",  "explicit-undefined",
                                 "implicit-defined",  "implicit-undefined-group-lengths",
                                 "explicit-data-set", "implicit-data-set"};

// Parses bytes as a file; false when a MyException ended it. Anything else leaves the test, which
// fails it.
bool ParseBytes(std::string bytes) {
  try {
    FileParser parser;
    parser.Open(fmemopen(bytes.data(), bytes.size(), "rb"));
    DicomData data(false);
    parser.Parse(data);
    return true;
  } catch (const halvorine::MyException&) {
    return false;
  }
}

// The corpus, made once for the program, and its dictionary loaded.
std::string Path(const char* variant) {
  static const halvorine::TempFolder folder;
  static const int status = [] {
    DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
    return std::system(
        (std::string(HALVORINE_MAKE_CORPUS " '") + folder.Path() + "' >/dev/null 2>&1").c_str());
  }();
  EXPECT_EQ(status, 0) << HALVORINE_MAKE_CORPUS " failed; dcmtk comes with tools/setup.sh.";
  return folder.Path(std::string(variant) + ".dcm");
}

TEST(FileParserDcmtkTest, EveryEncodingGivesTheTreeThatDcmdumpShows) {
  for (const char* variant : kVariants) {
    SCOPED_TRACE(variant);
    FileParser parser;
    ASSERT_TRUE(parser.Open(halvorine::ToWide(Path(variant))));
    DicomData data(false);
    parser.Parse(data);
    Rows rows;
    ListTree(data, "", rows);
    EXPECT_EQ(rows, DcmdumpRows(Path(variant)));
    EXPECT_EQ(parser.GetDataOffset(), std::strstr(variant, "data-set") != nullptr ? 0u : 132u);
  }
}

TEST(FileParserDcmtkTest, DamagedFilesGiveATreeOrAFailure) {
  for (const char* variant : kVariants) {
    SCOPED_TRACE(variant);
    const std::string file = halvorine::ReadWholeFile(Path(variant));
    ASSERT_TRUE(ParseBytes(file));
    std::vector<std::string> damaged;
    for (std::size_t at = 0; at < file.size(); ++at) {
      if (at > 0) damaged.push_back(file.substr(0, at));
      for (const char flip : {'\xFF', '\x80', '\x01'}) {
        damaged.push_back(file);
        damaged.back()[at] = static_cast<char>(damaged.back()[at] ^ flip);
      }
      for (const char* length : {"\xF0\xFF\xFF\xFF", "\xFF\xFF\xFF\x7F", "\xFE\xFF"}) {
        damaged.push_back(file);
        damaged.back().replace(at, std::strlen(length), length);
        damaged.back().resize(file.size());
      }
    }
    for (const std::string& bytes : damaged) {
      largestRequest = 0, counting = true;
      ParseBytes(bytes);
      counting = false;
      ASSERT_LE(largestRequest, 4 * bytes.size() + 65536);
    }
  }
}

}  // namespace
}  // namespace DicomEngine
