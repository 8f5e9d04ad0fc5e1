// The files of fuzz/make_corpus.sh, made by dcmtk in each encoding that dcmconv writes (tools/
// setup.sh installs it), parsed here and listed by dcmdump: both must show the same tags in the
// same order, with the same VRs, lengths and values. The same files, cut, with bytes flipped and
// with lengths inflated, must give a tree or a MyException, and no allocation larger than a few
// times the file.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <regex>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/DoubleVR.h"
#include "engine/elements/IntegerVR.h"
#include "engine/elements/SignedShortVR.h"
#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRAttributeTag.h"
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

template <typename Numbers>
std::string Joined(const Numbers& numbers, const char* format) {
  std::string text;
  for (const auto number : numbers) {
    char piece[32];
    std::snprintf(piece, sizeof piece, format, number);
    text += (text.empty() ? "" : "\\") + std::string(piece);
  }
  return text;
}

template <typename Element>
bool Numbers(const VR& element, const char* format, std::string* value) {
  const auto* numbers = dynamic_cast<const Element*>(&element);
  if (numbers != nullptr) *value = Joined(numbers->values, format);
  return numbers != nullptr;
}

// The value as dcmdump shows it.
std::string ValueOf(const VR& element) {
  if (const auto* text = dynamic_cast<const VRString*>(&element)) {
    std::string value = text->GetValue();
    value.erase(value.find_last_not_of(' ') + 1);
    return value.empty() ? "(no value available)" : "[" + value + "]";
  }
  if (const auto* binary = dynamic_cast<const VRBinary*>(&element)) {
    const bool words = element.vrCode == "OW";
    std::vector<unsigned> units;
    for (std::uint32_t at = 0; at < element.length; at += words ? 2 : 1) {
      const std::uint8_t* bytes = binary->GetData() + at;
      units.push_back(words ? bytes[0] | bytes[1] << 8 : bytes[0]);
    }
    return Joined(units, words ? "%04x" : "%02x");
  }
  std::string value;
  if (dynamic_cast<const VRAttributeTag*>(&element) != nullptr) {
    // The tags are held privately; their text shows them.
    const std::string text = element.ToString();
    const std::regex tag(R"(Value=\[\(([0-9a-f]+), ([0-9a-f]+)\))");
    for (auto found = std::sregex_iterator(text.begin(), text.end(), tag);
         found != std::sregex_iterator(); ++found) {
      value += (value.empty() ? "" : "\\") +
               halvorine::FormatBounded(16, "(%04lx,%04lx)", std::stoul((*found)[1], nullptr, 16),
                                        std::stoul((*found)[2], nullptr, 16));
    }
    return value;
  }
  Numbers<UnsignedShortVR>(element, "%u", &value) ||
      Numbers<SignedShortVR>(element, "%d", &value) ||
      Numbers<UnsignedIntegerVR>(element, "%u", &value) ||
      Numbers<IntegerVR>(element, "%d", &value) || Numbers<DoubleVR>(element, "%g", &value);
  return value;
}

// dcmdump shows a delimiter at the level of what it ends; the tree holds it inside.
void ListTree(const VRContainer& container, const std::string& indent, Rows& rows) {
  for (const auto& element : container.Elements()) {
    const bool delimiter = element->group == kItemGroup && element->element != kItem;
    rows.push_back(
        Row(delimiter ? indent.substr(2) : indent,
            halvorine::FormatBounded(16, "(%04X,%04X)", element->group, element->element),
            element->GetVRCode(), ValueOf(*element),
            element->length == kUndefinedLength ? "u/l" : std::to_string(element->length)));
    if (const auto* inner = dynamic_cast<const VRContainer*>(element.get())) {
      ListTree(*inner, indent + "  ", rows);
    }
  }
}

// Parses bytes as a file; false when a MyException ended it. Anything else fails the test.
bool ParseBytes(std::string bytes) {
  try {
    FileParser parser;
    parser.Open(fmemopen(bytes.data(), bytes.size(), "rb"));
    DicomData data(false);
    parser.Parse(data);
    return true;
  } catch (const halvorine::MyException&) {
    return false;
  } catch (...) {
    ADD_FAILURE() << "a failure other than MyException";
    return false;
  }
}

class FileParserDcmtkTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
    folder_ = new halvorine::TempFolder;
    const int status = std::system(
        (std::string(HALVORINE_MAKE_CORPUS " '") + folder_->Path() + "' >/dev/null 2>&1").c_str());
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << HALVORINE_MAKE_CORPUS " failed; dcmtk comes with tools/setup.sh.";
  }
  static void TearDownTestSuite() { delete folder_; }
  static std::string Path(const char* variant) {
    return folder_->Path(std::string(variant) + ".dcm");
  }

  static halvorine::TempFolder* folder_;
};

halvorine::TempFolder* FileParserDcmtkTest::folder_ = nullptr;

TEST_F(FileParserDcmtkTest, EveryEncodingGivesTheTreeThatDcmdumpShows) {
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

TEST_F(FileParserDcmtkTest, DamagedFilesGiveATreeOrAFailure) {
  for (const char* variant : kVariants) {
    SCOPED_TRACE(variant);
    const std::string file = halvorine::ReadWholeFile(Path(variant));
    ASSERT_TRUE(ParseBytes(file));
    std::vector<std::string> damaged;
    for (std::size_t size = 1; size < file.size(); ++size) damaged.push_back(file.substr(0, size));
    for (std::size_t at = 0; at < file.size(); ++at) {
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
      largestRequest = 0;
      counting = true;
      ParseBytes(bytes);
      counting = false;
      ASSERT_LE(largestRequest, 4 * bytes.size() + 65536);
    }
  }
}

}  // namespace
}  // namespace DicomEngine
