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

TEST(FileSetHeaderTest, EveryByteOfTheHeader) {
  const struct {
    std::string aeTitle;
    std::string encoded;
  } cases[] = {{"HALVORINE", "HALVORINE "},
               {"", ""},
               {"AB", "AB"},
               {"A TITLE LONGER THAN 16", "A TITLE LONGER THAN 16"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.aeTitle);
    DicomEngine::FileWriter writer;
    DicomEngine::OffsetMap headerMap;
    BuildFileSetHeader(writer, headerMap, [&](const std::string& key) {
      EXPECT_EQ(key, "AeTitle");
      return c.aeTitle;
    });
    const std::string stream = BytesOf(writer);
    // A new UID for every file, from the clock: taken from the stream, then checked.
    const std::string uid = stream.substr(62, ULOf(stream.substr(60, 2)));
    const std::string uidText = uid.substr(0, uid.find('\0'));
    EXPECT_EQ(uid.size(), (uidText.size() + 1) / 2 * 2);
    EXPECT_TRUE(std::regex_match(uidText, std::regex(R"(1\.3\.6\.1\.4\.1\.58217(\.[0-9]+){7})")))
        << uidText;
    const auto metaLength = static_cast<std::uint32_t>(120 + uid.size() + c.encoded.size());
    const std::string expected =
        Encoded(0x0002, 0x0000, "UL", LittleEndian(metaLength, 4)) +
        Encoded(0x0002, 0x0001, "OB", std::string("\x02\x00", 2)) +
        Encoded(0x0002, 0x0002, "UI", "1.2.840.10008.1.3.10") + Encoded(0x0002, 0x0003, "UI", uid) +
        Encoded(0x0002, 0x0010, "UI", std::string("1.2.840.10008.1.2.1\0", 20)) +
        Encoded(0x0002, 0x0012, "UI", std::string("KORVANEL PACS\0", 14)) +
        Encoded(0x0002, 0x0013, "SH", "4.0 ") + Encoded(0x0002, 0x0016, "AE", c.encoded) +
        Encoded(0x0004, 0x0000, "UL", LittleEndian(54, 4)) + Encoded(0x0004, 0x1130, "CS", "") +
        Encoded(0x0004, 0x1200, "UL", LittleEndian(0, 4)) +
        Encoded(0x0004, 0x1202, "UL", LittleEndian(0, 4)) +
        Encoded(0x0004, 0x1212, "US", LittleEndian(0, 2)) + Encoded(0x0004, 0x1220, "SQ", "");
    EXPECT_EQ(DicomEngine::HexOf(stream), DicomEngine::HexOf(expected));
    // Each element noted where its tag stands; a group length under its group alone.
    EXPECT_EQ(headerMap.size(), 14u);
    for (const auto& [key, position] : headerMap) {
      const std::uint32_t element = key > 0xFFFF ? key >> 16 : 0;
      EXPECT_EQ(stream.substr(position, 4),
                LittleEndian(key & 0xFFFF, 2) + LittleEndian(element, 2))
          << key;
    }
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
