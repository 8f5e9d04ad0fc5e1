// Helpers of the engine's tests: elements built in one call, and trees and dcmdump's listing as
// rows of one form.
#ifndef HALVORINE_TESTS_ENGINE_ENGINETESTSUPPORT_H
#define HALVORINE_TESTS_ENGINE_ENGINETESTSUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/elements/VRAttributeTag.h"
#include "engine/elements/VRBinarySequenceItem.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/parsing/MultiChunkBuffer.h"
#include "support/MyException.h"

namespace DicomEngine {

using Bytes = std::vector<std::uint8_t>;
using Rows = std::vector<std::string>;

inline std::unique_ptr<std::uint8_t[]> Block(const Bytes& bytes) {
  auto block = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get());
  return block;
}

// The bytes in owned chunks, cut at the given offsets (a repeated offset makes an empty chunk).
inline halvorine::MultiChunkBuffer Chunked(std::string_view bytes, std::vector<std::size_t> cuts) {
  halvorine::MultiChunkBuffer buffer;
  cuts.push_back(bytes.size());
  for (std::size_t from = 0; const std::size_t to : cuts) {
    buffer.AddChunk(Block(Bytes(bytes.begin() + from, bytes.begin() + to)),
                    static_cast<std::uint32_t>(to - from));
    from = to;
  }
  return buffer;
}

inline std::unique_ptr<VR> Binary(VRCode code, std::uint16_t group, std::uint16_t element,
                                  const Bytes& bytes) {
  return std::make_unique<VRBinary>(code, group, element, static_cast<std::uint32_t>(bytes.size()),
                                    Block(bytes));
}

inline std::unique_ptr<VR> Fragment(const Bytes& bytes) {
  return std::make_unique<VRBinarySequenceItem>(kItemGroup, kItem,
                                                static_cast<std::uint32_t>(bytes.size()),
                                                bytes.empty() ? nullptr : Block(bytes));
}

inline std::unique_ptr<VR> Delimiter(std::uint16_t element) {
  return std::make_unique<VRSequenceItem>("", kItemGroup, element, 0);
}

template <typename... Elements>
std::unique_ptr<VR> ItemOf(std::uint32_t length, Elements... elements) {
  auto item = std::make_unique<VRSequenceItem>("", kItemGroup, kItem, length);
  (item->Append(std::move(elements), true), ...);
  return item;
}

template <typename... Items>
std::unique_ptr<VR> SequenceOf(VRCode code, std::uint16_t group, std::uint16_t element,
                               std::uint32_t length, Items... items) {
  auto sequence = std::make_unique<VRSequence>(code, group, element, length);
  (sequence->Append(std::move(items), false), ...);
  return sequence;
}

// "<indent>(gggg,eeee) VR value #length", the parts that are empty left out.
inline std::string Row(const std::string& indent, const std::string& tag, const std::string& code,
                       const std::string& value, const std::string& length) {
  return indent + tag + (code.empty() ? "" : " " + code) + (value.empty() ? "" : " " + value) +
         " #" + length;
}

// The value as dcmdump shows it. Numbers and tags come from the element's text, which the
// element classes' tests pin: "Value=[-2<=>0xFFFFFFFE]", "Value=[1.500000<=>...]" and
// "Value=[(18, 1063)]". That text shows a UL from 2^31 up as negative; no file here holds one.
inline std::string ValueOf(const VR& element) {
  std::string value;
  const auto add = [&value](const std::string& part) {
    value += (value.empty() ? "" : "\\") + part;
  };
  if (const auto* text = dynamic_cast<const VRString*>(&element)) {
    value = text->GetValue();
    value.erase(value.find_last_not_of(' ') + 1);
    return value.empty() ? "(no value available)" : "[" + value + "]";
  }
  if (const auto* binary = dynamic_cast<const VRBinary*>(&element)) {
    const bool words = element.vrCode == "OW";
    for (std::uint32_t at = 0; at < element.length; at += words ? 2 : 1) {
      const std::uint8_t* bytes = binary->GetData() + at;
      add(halvorine::FormatBounded(8, words ? "%04x" : "%02x",
                                   words ? bytes[0] | bytes[1] << 8 : bytes[0]));
    }
    return value.empty() ? "(no value available)" : value;
  }
  if (const auto* fragments = dynamic_cast<const VRSequence*>(&element);
      fragments != nullptr && element.vrCode != "SQ") {
    return "(PixelSequence #=" + std::to_string(fragments->Elements().size() - 1) + ")";
  }
  if (dynamic_cast<const VRContainer*>(&element) != nullptr) return "";
  const std::string text = element.ToString();
  static const std::regex kValue(R"(Value=\[(\(([0-9a-f]+), ([0-9a-f]+)\)|[^<\]]*))");
  for (auto found = std::sregex_iterator(text.begin(), text.end(), kValue);
       found != std::sregex_iterator(); ++found) {
    const std::string number = (*found)[1];
    if ((*found)[2].matched) {
      add(halvorine::FormatBounded(16, "(%04lx,%04lx)", std::stoul((*found)[2], nullptr, 16),
                                   std::stoul((*found)[3], nullptr, 16)));
    } else {
      add(number.find('.') == std::string::npos
              ? number
              : halvorine::FormatBounded(32, "%g", std::stod(number)));
    }
  }
  return value;
}

// The tree as dcmdump lists it, which shows a delimiter at the level of what it ends.
inline void ListTree(const VRContainer& container, const std::string& indent, Rows& rows) {
  for (const auto& element : container.Elements()) {
    const bool delimiter = element->group == kItemGroup && element->element != kItem;
    rows.push_back(
        Row(delimiter ? indent.substr(2) : indent,
            halvorine::FormatBounded(16, "(%04x,%04x)", element->group, element->element),
            element->GetVRCode(), ValueOf(*element),
            element->length == kUndefinedLength ? "u/l" : std::to_string(element->length)));
    if (const auto* inner = dynamic_cast<const VRContainer*>(element.get())) {
      ListTree(*inner, indent + "  ", rows);
    }
  }
}

// A dcmdump line as a Row: "na" and "pi" show no code, "up" shows as UL and "??" as UN;
// sequences and items show no value. Comments and the delimiters that dcmdump adds "for
// re-encoding" give nothing.
inline std::string RowOf(const std::string& line) {
  const std::size_t indent = line.find_first_not_of(' ');
  if (line[indent] != '(' || line.find("for re-encod") != std::string::npos) return "";
  std::string code = line.substr(indent + 12, 2);
  const std::size_t hash = line.rfind('#');
  std::string value = line.substr(indent + 15, hash - indent - 15);
  value.erase(value.find_last_not_of(' ') + 1);
  if (code == "SQ" || code == "na") value.clear();
  if (code == "na" || code == "pi") code.clear();
  if (code == "up") code = "UL";
  if (code == "??") code = "UN";
  std::string length = line.substr(hash + 1, line.find(',', hash) - hash - 1);
  return Row(line.substr(0, indent), line.substr(indent, 11), code, value,
             length.substr(length.find_first_not_of(' ')));
}

// What dcmdump reads from the file; its warnings, if any, show as rows of their own.
inline Rows DcmdumpRows(const std::string& path) {
  const std::string command = "dcmdump +L -Un '" + path + "' 2>&1";
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  for (int letter; pipe != nullptr && (letter = std::fgetc(pipe)) != EOF;) output += char(letter);
  EXPECT_EQ(pipe == nullptr ? -1 : pclose(pipe), 0)
      << command << " failed; dcmtk comes with tools/setup.sh.\n"
      << output;
  Rows rows;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(' ') == std::string::npos) continue;
    const bool listed = line.find_first_of("#(") == line.find_first_not_of(' ');
    if (const std::string row = listed ? RowOf(line) : line; !row.empty()) rows.push_back(row);
  }
  return rows;
}

}  // namespace DicomEngine

#endif  // HALVORINE_TESTS_ENGINE_ENGINETESTSUPPORT_H
