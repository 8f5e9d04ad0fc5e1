// Files made by dcmtk from one text dump (dump2dcm), in each encoding that dcmconv writes, parsed
// here and listed by dcmdump: both must show the same tags in the same order, with the same VRs,
// lengths and values. dcmtk must be installed (tools/setup.sh installs it); without it these
// tests fail.
//
// dcmdump shows texts without their padding, "na" for items and delimiters, and "??" for a tag
// that it reads without a VR, which the parser calls "UN". The delimiters that it adds "for
// re-encoding" behind explicit-length items are not in the file and are passed over.
//
// The same files, cut, with bytes flipped and with lengths inflated, must give a tree or a
// MyException, and no allocation larger than a few times the file.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/DoubleVR.h"
#include "engine/elements/IntegerVR.h"
#include "engine/elements/SignedShortVR.h"
#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRAttributeTag.h"
#include "engine/elements/VRBinary.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/parsing/FileParser.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace {

// The largest single request to operator new while counting is on.
bool counting = false;
std::size_t largestRequest = 0;

}  // namespace

// Every replaceable form, so that none is left to a sanitizer's own allocator: they pair malloc
// with free, as the default ones do.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace {

void* Allocate(std::size_t size) noexcept {
  if (counting) largestRequest = std::max(largestRequest, size);
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

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

using Rows = std::vector<std::string>;

const char kDump[] = R"((0002,0010) UI =LittleEndianExplicit
(0008,0005) CS [ISO_IR 100]
(0008,0016) UI =SecondaryCaptureImageStorage
(0008,0020) DA [20240309]
(0008,0060) CS (no value available)
(0008,1115) SQ (Sequence)
  (fffe,e000) na (Item)
    (0008,1140) SQ (Sequence)
      (fffe,e000) na (Item)
        (0008,1155) UI [1.2.3.4.5]
      (fffe,e00d) na (ItemDelimitationItem)
      (fffe,e000) na (Item)
      (fffe,e00d) na (ItemDelimitationItem)
    (fffe,e0dd) na (SequenceDelimitationItem)
    (0008,1150) UI [1.2.840.10008.5.1.4.1.1.7]
  (fffe,e00d) na (ItemDelimitationItem)
(fffe,e0dd) na (SequenceDelimitationItem)
(0009,1001) UN 01\02\03\04
(0010,0010) PN [Doe^John]
(0018,2043) FL 1.5\-2
(0018,6020) SL -1\2
(0018,9087) FD 0.5
(0018,9219) SS -5
(0020,000d) UI [1.2.3]
(0028,0009) AT (0018,1063)\(7fe0,0010)
(0028,0010) US 64\65535
(0028,1201) OW 0201\0403
(0040,a160) UT [Some text]
)";

struct Variant {
  const char* name;
  const char* options;  // of dcmconv; null for dump2dcm's own file
};

const Variant kVariants[] = {
    {"explicit, defined lengths", nullptr},   {"explicit, undefined lengths", "-e"},
    {"implicit, defined lengths", "+ti"},     {"implicit, undefined lengths", "+ti -e"},
    {"implicit, group lengths", "+ti +g"},    {"explicit data set alone", "+te -F"},
    {"implicit data set alone", "+ti -F -e"},
};

void RunTool(const std::string& command) {
  const int status = std::system((command + " 2>&1").c_str());
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
      << command << " failed; dcmtk comes with tools/setup.sh.";
}

std::string OutputOf(const std::string& command) {
  std::string output;
  std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  for (int letter; pipe != nullptr && (letter = std::fgetc(pipe)) != EOF;) {
    output += static_cast<char>(letter);
  }
  EXPECT_EQ(pipe == nullptr ? -1 : pclose(pipe), 0)
      << command << " failed; dcmtk comes with tools/setup.sh.\n"
      << output;
  return output;
}

// "<indent>(GGGG,EEEE) VR value #length", with no value for sequences and items.
std::string RowOf(const std::string& line) {
  const std::size_t indent = line.find_first_not_of(' ');
  if (indent == std::string::npos || line[indent] != '(' ||
      line.find("for re-encod") != std::string::npos) {
    return "";
  }
  std::string tag = line.substr(indent, 11);
  for (char& letter : tag) letter = static_cast<char>(std::toupper(letter));
  std::string code = line.substr(indent + 12, 2);
  const std::size_t hash = line.rfind('#');
  std::string value = line.substr(indent + 15, hash - indent - 15);
  value.erase(value.find_last_not_of(' ') + 1);
  if (code == "na" || code == "SQ") value.clear();
  if (code == "na") code.clear();
  if (code == "??") code = "UN";
  std::string length = line.substr(hash + 1, line.find(',', hash) - hash - 1);
  length.erase(0, length.find_first_not_of(' '));
  return line.substr(0, indent) + tag + " " + code + " " + value + " #" + length;
}

Rows DumpOf(const std::string& path) {
  Rows rows;
  std::istringstream lines(OutputOf("dcmdump +L -Un '" + path + "'"));
  for (std::string line; std::getline(lines, line);) {
    if (const std::string row = RowOf(line); !row.empty()) rows.push_back(row);
  }
  return rows;
}

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

// The value as dcmdump shows it.
std::string ValueOf(const VR& element) {
  if (const auto* text = dynamic_cast<const VRString*>(&element)) {
    std::string value = text->GetValue();
    value.erase(value.find_last_not_of(' ') + 1);
    return value.empty() ? "(no value available)" : "[" + value + "]";
  }
  if (const auto* binary = dynamic_cast<const VRBinary*>(&element)) {
    const std::uint8_t* bytes = binary->GetData();
    std::vector<unsigned> units;
    const bool words = element.vrCode == "OW";
    for (std::uint32_t at = 0; at < element.length; at += words ? 2 : 1) {
      units.push_back(words ? bytes[at] | bytes[at + 1] << 8 : bytes[at]);
    }
    return Joined(units, words ? "%04x" : "%02x");
  }
  if (const auto* tags = dynamic_cast<const VRAttributeTag*>(&element)) {
    // The tags are held privately; their text shows them.
    std::string value;
    const std::string text = tags->ToString();
    const std::regex tag(R"(Value=\[\(([0-9a-f]+), ([0-9a-f]+)\))");
    for (auto found = std::sregex_iterator(text.begin(), text.end(), tag);
         found != std::sregex_iterator(); ++found) {
      char piece[16];
      std::snprintf(piece, sizeof piece, "(%04lx,%04lx)", std::stoul((*found)[1], nullptr, 16),
                    std::stoul((*found)[2], nullptr, 16));
      value += (value.empty() ? "" : "\\") + std::string(piece);
    }
    return value;
  }
  if (const auto* number = dynamic_cast<const UnsignedShortVR*>(&element)) {
    return Joined(number->values, "%u");
  }
  if (const auto* number = dynamic_cast<const SignedShortVR*>(&element)) {
    return Joined(number->values, "%d");
  }
  if (const auto* number = dynamic_cast<const UnsignedIntegerVR*>(&element)) {
    return Joined(number->values, "%u");
  }
  if (const auto* number = dynamic_cast<const IntegerVR*>(&element)) {
    return Joined(number->values, "%d");
  }
  if (const auto* number = dynamic_cast<const DoubleVR*>(&element)) {
    return Joined(number->values, "%g");
  }
  return "";
}

// dcmdump shows a delimiter at the level of what it ends; the tree holds it inside.
void ListTree(const VRContainer& container, const std::string& indent, Rows& rows) {
  for (const auto& element : container.Elements()) {
    char tag[16];
    std::snprintf(tag, sizeof tag, "(%04X,%04X)", element->group, element->element);
    const std::string length =
        element->length == kUndefinedLength ? "u/l" : std::to_string(element->length);
    const bool delimiter = element->group == kItemGroup && element->element != kItem;
    rows.push_back((delimiter ? indent.substr(2) : indent) + tag + " " + element->GetVRCode() +
                   " " + ValueOf(*element) + " #" + length);
    if (const auto* inner = dynamic_cast<const VRContainer*>(element.get())) {
      ListTree(*inner, indent + "  ", rows);
    }
  }
}

// Counts the largest allocation made while it lives.
class AllocationWatch {
 public:
  AllocationWatch() {
    largestRequest = 0;
    counting = true;
  }
  ~AllocationWatch() { counting = false; }
  std::size_t Largest() const { return largestRequest; }
};

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
    halvorine::WriteWholeFile(folder_->Path("source.dump"), kDump);
    RunTool("dump2dcm '" + folder_->Path("source.dump") + "' '" + Path(kVariants[0]) + "'");
    for (const Variant& variant : kVariants) {
      if (variant.options != nullptr) {
        RunTool(std::string("dcmconv ") + variant.options + " '" + Path(kVariants[0]) + "' '" +
                Path(variant) + "'");
      }
    }
  }
  static void TearDownTestSuite() { delete folder_; }

  static std::string Path(const Variant& variant) {
    return folder_->Path(std::to_string(&variant - kVariants) + ".dcm");
  }

  static halvorine::TempFolder* folder_;
};

halvorine::TempFolder* FileParserDcmtkTest::folder_ = nullptr;

TEST_F(FileParserDcmtkTest, EveryEncodingGivesTheTreeThatDcmdumpShows) {
  for (const Variant& variant : kVariants) {
    SCOPED_TRACE(variant.name);
    FileParser parser;
    ASSERT_TRUE(parser.Open(halvorine::ToWide(Path(variant))));
    DicomData data(false);
    parser.Parse(data);
    Rows rows;
    ListTree(data, "", rows);
    EXPECT_EQ(rows, DumpOf(Path(variant)));
    EXPECT_EQ(
        parser.GetDataOffset(),
        variant.options != nullptr && std::strstr(variant.options, "-F") != nullptr ? 0u : 132u);
  }
}

TEST_F(FileParserDcmtkTest, DamagedFilesGiveATreeOrAFailure) {
  for (const Variant& variant : kVariants) {
    SCOPED_TRACE(variant.name);
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
      const AllocationWatch watch;
      ParseBytes(bytes);
      ASSERT_LE(watch.Largest(), 4 * bytes.size() + 65536);
    }
  }
}

}  // namespace
}  // namespace DicomEngine
