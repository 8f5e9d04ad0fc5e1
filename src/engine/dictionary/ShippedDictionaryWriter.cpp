// The build's writer of the shipped dictionary's table: parses the dictionary file that the build
// ships with the text reader and writes its entries, with the file's digest, as a C++ source.
//
//   halvorine_shipped_dictionary_writer DICTIONARY OUTPUT
//
// A file that fails to load fails the build: every load of the component would fail on it too.
#include <fcntl.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <sstream>
#include <string>

#include "engine/dictionary/DicomDictionary.h"
#include "platform/FileDescriptor.h"

namespace DicomEngine {

// The writer knows no table yet: it makes it.
const ShippedDictionary* GetShippedDictionary() { return nullptr; }

namespace {

// A C++ literal of any bytes: octal escapes for all but printable ASCII.
std::string Literal(std::string_view text) {
  std::string literal = "\"";
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code >= 0x20 && code < 0x7F && character != '"' && character != '\\') {
      literal += character;
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\%03o", code);
      literal += escape;
    }
  }
  return literal + "\"";
}

std::string Source(const DicomDictionary& dictionary, const FileDigest& digest) {
  const std::span<const DicomDictionary::Entry> entries = dictionary.StandardEntries();
  std::uint32_t vrCount = 0;
  for (const DicomDictionary::Entry& entry : entries) vrCount = std::max(vrCount, entry.vr + 1);
  std::ostringstream out;
  out << "// Made by halvorine_shipped_dictionary_writer from the shipped dicom_dictionary.txt.\n"
         "#include \"engine/dictionary/DicomDictionary.h\"\n\n"
         "namespace DicomEngine {\nnamespace {\n\n"
         "constexpr std::string_view kVRTexts[] = {";
  for (std::uint32_t index = 0; index < vrCount; ++index) {
    out << (index % 8 == 0 ? "\n   " : "") << " " << Literal(dictionary.VRText(index)) << ",";
  }
  out << "\n};\n\nconstexpr DicomDictionary::Entry kEntries[] = {";
  for (std::size_t index = 0; index < entries.size(); ++index) {
    char entry[32];
    std::snprintf(entry, sizeof entry, " {0x%08X, %u},", entries[index].key, entries[index].vr);
    out << (index % 6 == 0 ? "\n   " : "") << entry;
  }
  char digestText[96];
  std::snprintf(digestText, sizeof digestText, "{%lluu, 0x%016llXu}",
                static_cast<unsigned long long>(digest.size),
                static_cast<unsigned long long>(digest.hash));
  out << "\n};\n\nconstexpr ShippedDictionary kShipped{" << digestText
      << ", kVRTexts, kEntries};\n\n}  // namespace\n\n"
         "const ShippedDictionary* GetShippedDictionary() { return &kShipped; }\n\n"
         "}  // namespace DicomEngine\n";
  return out.str();
}

int Write(const std::string& dictionaryPath, const std::string& outputPath) {
  DicomDictionary dictionary;
  dictionary.LoadDictionary(dictionaryPath);
  const halvorine::FileDescriptor file(open(dictionaryPath.c_str(), O_RDONLY | O_CLOEXEC));
  const std::optional<FileDigest> digest = DigestFile(file.get());
  if (!digest || dictionary.StandardEntries().empty()) {
    std::fprintf(stderr, "can't read the entries of %s\n", dictionaryPath.c_str());
    return 1;
  }
  std::ofstream output(outputPath, std::ios::binary);
  output << Source(dictionary, *digest);
  return output.flush() ? 0 : 1;
}

}  // namespace
}  // namespace DicomEngine

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s DICTIONARY OUTPUT\n", argv[0]);
    return 2;
  }
  try {
    return DicomEngine::Write(argv[1], argv[2]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: %s\n", argv[1], failure.what());
    return 1;
  }
}
