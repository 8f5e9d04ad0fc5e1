#include "support/SettingsHelper.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "support/MyException.h"

namespace halvorine {
namespace {

// The value of key, or nothing when Get fails with the bare "not found" text.
std::optional<std::string> ValueOf(const SettingsHelper& settings, const std::string& key) {
  try {
    return settings.Get(key);
  } catch (const MyException& failure) {
    EXPECT_STREQ(failure.what(), ("Cannot find the " + key + " setting key.").c_str());
    return std::nullopt;
  }
}

// One entry, and the whole file of the host, are read in LoadsOneFileOnce.
TEST(SettingsHelperTest, ScansAddLines) {
  TempFolder temp;
  const auto scan = [&](const std::string& content, const std::string& key) {
    WriteWholeFile(temp.Path("app.config"), content);
    SettingsHelper settings;
    settings.Load(temp.Path("app.config"));
    return ValueOf(settings, key);
  };
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      // The later line wins; only the first entry of a line counts.
      {"<add key=\"AeTitle\" value=\"1\"/>\n<add key=\"AeTitle\" value=\"2\"/>\n", "2"},
      {R"(<add key="AeTitle" value="1"/><add key="AeTitle" value="2"/>)", "1"},
      // An entry spread over two lines, or with its value first, is none.
      {"<add key=\"AeTitle\"\n value=\"X\"/>", std::nullopt},
      {R"(<add value="X" key="AeTitle"/>)", std::nullopt},
      // Values are taken as they stand, up to the second quote.
      {R"(<add key="AeTitle" value=""/>)", ""},
      {R"(<add key="AeTitle" value="  A B  "/>)", "  A B  "},
      {R"(<add key="AeTitle" value="A"B"/>)", "A"},
      {R"(<add key="AeTitle" value="A&amp;B"/>)", "A&amp;B"},
      // No blank before an equals sign, "<add" needed, and a closing quote.
      {R"(<add key ="AeTitle" value="X"/>)", std::nullopt},
      {R"(<set key="AeTitle" value="X"/>)", std::nullopt},
      {R"(<add key="AeTitle" value="X/>)", std::nullopt},
      // key= is searched behind <add, and a comment is no comment.
      {R"(text key="x" <add key="AeTitle" value="X"/>)", "X"},
      {R"(<!-- <add key="AeTitle" value="X"/> -->)", "X"},
  };
  for (const auto& [content, value] : cases) EXPECT_EQ(scan(content, "AeTitle"), value) << content;
  // value= is searched behind the key's opening quote.
  EXPECT_EQ(scan(R"(<add key="value=" x="AeTitle"/>)", "value="), " x=");
}

// The same name again reads nothing, even when it was missing; another name, or the same file
// under another form of its path, fails. A name without '/' is looked for beside the executable,
// where the build puts the host's file.
TEST(SettingsHelperTest, LoadsOneFileOnce) {
  TempFolder temp;
  SettingsHelper settings;
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { settings.Load(""); }),
               "The settings file name is NULL or empty.", "SettingsHelper");
  settings.Load(temp.Path("a.config"));
  WriteWholeFile(temp.Path("a.config"), R"(<add key="AeTitle" value="LATE"/>)");
  settings.Load(temp.Path("a.config"));
  for (const std::string& second : {temp.Path("b.config"), temp.Path("/a.config")}) {
    EXPECT_PRED3(
        IsPlaced, RaisedMessage([&] { settings.Load(second); }),
        "Already loaded the " + temp.Path("a.config") +
            " settings file.\r\nAttempt to load a  second different settings file: " + second + ".",
        "SettingsHelper");
  }
  EXPECT_EQ(ValueOf(settings, "AeTitle"), std::nullopt);
  SettingsHelper beside;
  beside.Load("LumbrelUI.exe.config");
  EXPECT_EQ(ValueOf(beside, "AeTitle"), "HALVORINE");
}

}  // namespace
}  // namespace halvorine
