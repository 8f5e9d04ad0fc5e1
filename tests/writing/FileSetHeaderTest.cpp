#include "writing/FileSetHeader.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "DiscTestSupport.h"
#include "TempFolder.h"
#include "engine/encoding/HexText.h"
#include "support/MyException.h"
#include "support/SettingsHelper.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

// The positions that the header notes are those of the links that a disc's DICOMDIR gets, which
// DiscBuilderDcmtkTest checks.
TEST(FileSetHeaderTest, EveryByteOfTheHeader) {
  const std::pair<std::string, std::string> cases[] = {
      {"HALVORINE", "HALVORINE "}, {"", ""}, {"A TITLE LONGER THAN 16", "A TITLE LONGER THAN 16"}};
  for (const auto& [title, encoded] : cases) {
    SCOPED_TRACE(title);
    const std::string aeTitle = title;
    DicomEngine::FileWriter writer;
    DicomEngine::OffsetMap headerMap;
    BuildFileSetHeader(writer, headerMap, [&](const std::string& key) {
      EXPECT_EQ(key, "AeTitle");
      return aeTitle;
    });
    const std::string stream(reinterpret_cast<const char*>(writer.GetBuffer()), writer.GetCursor());
    // A new UID for every file, from the clock: taken from the stream, then checked.
    const std::string uid = stream.substr(62, static_cast<std::uint8_t>(stream.at(60)));
    const std::string uidText = uid.substr(0, uid.find('\0'));
    EXPECT_EQ(uid.size(), (uidText.size() + 1) / 2 * 2);
    EXPECT_TRUE(std::regex_match(uidText, std::regex(R"(1\.3\.6\.1\.4\.1\.58217(\.[0-9]+){7})")))
        << uidText;
    const auto metaLength = static_cast<std::uint32_t>(120 + uid.size() + encoded.size());
    const std::string expected =
        Encoded(0x0002, 0x0000, "UL", LittleEndian(metaLength, 4)) +
        Encoded(0x0002, 0x0001, "OB", std::string("\x02\x00", 2)) +
        Encoded(0x0002, 0x0002, "UI", "1.2.840.10008.1.3.10") + Encoded(0x0002, 0x0003, "UI", uid) +
        Encoded(0x0002, 0x0010, "UI", std::string("1.2.840.10008.1.2.1\0", 20)) +
        Encoded(0x0002, 0x0012, "UI", std::string("KORVANEL PACS\0", 14)) +
        Encoded(0x0002, 0x0013, "SH", "4.0 ") + Encoded(0x0002, 0x0016, "AE", encoded) +
        Encoded(0x0004, 0x0000, "UL", LittleEndian(54, 4)) + Encoded(0x0004, 0x1130, "CS", "") +
        Encoded(0x0004, 0x1200, "UL", LittleEndian(0, 4)) +
        Encoded(0x0004, 0x1202, "UL", LittleEndian(0, 4)) +
        Encoded(0x0004, 0x1212, "US", LittleEndian(0, 2)) + Encoded(0x0004, 0x1220, "SQ", "");
    EXPECT_EQ(DicomEngine::HexOf(stream), DicomEngine::HexOf(expected));
  }
}

TEST(FileSetHeaderTest, AMissingAeTitleIsNestedInTheFailure) {
  const TempFolder folder;
  SettingsHelper settings;
  settings.Load(folder.Path("no-such.config"));
  DicomEngine::FileWriter writer;
  DicomEngine::OffsetMap headerMap;
  std::string xml = "nothing raised";
  try {
    BuildFileSetHeader(writer, headerMap,
                       [&](const std::string& key) { return settings.Get(key); });
  } catch (const MyException& failure) {
    xml = ToNarrow(failure.ToXml());
  }
  EXPECT_TRUE(std::regex_match(
      xml, std::regex("<exception Message=\"Failed to read setting\\. File=DicomDirImpl, "
                      "Line=[1-9][0-9]*\"><exception Message=\"Cannot find the AeTitle "
                      "setting key\\.\"></exception></exception>")))
      << xml;
}

}  // namespace
}  // namespace halvorine
