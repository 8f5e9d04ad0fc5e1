#include "support/SettingsHelper.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

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

struct ScanCase {
  const char* name;
  std::string content;
  std::string key;
  std::optional<std::string> value;
};

const ScanCase kScanCases[] = {
    {"one entry", R"(<add key="AeTitle" value="HALVORINE"/>)", "AeTitle", "HALVORINE"},
    {"the later line wins",
     "<add key=\"AeTitle\" value=\"FIRST\"/>\n<add key=\"AeTitle\" value=\"SECOND\"/>\n", "AeTitle",
     "SECOND"},
    {"only the first entry of a line counts",
     R"(<add key="AeTitle" value="FIRST"/><add key="AeTitle" value="SECOND"/>)", "AeTitle",
     "FIRST"},
    {"spread over two lines", "<add key=\"AeTitle\"\n value=\"HALVORINE\"/>", "AeTitle",
     std::nullopt},
    {"value ahead of the key", R"(<add value="HALVORINE" key="AeTitle"/>)", "AeTitle",
     std::nullopt},
    {"empty value", R"(<add key="AeTitle" value=""/>)", "AeTitle", ""},
    {"blanks are kept", R"(<add key="AeTitle" value="  A B  "/>)", "AeTitle", "  A B  "},
    {"a value ends at its second quote", R"(<add key="AeTitle" value="A"B"/>)", "AeTitle", "A"},
    {"a blank before the equals sign", R"(<add key ="AeTitle" value="HALVORINE"/>)", "AeTitle",
     std::nullopt},
    {"a blank before the value's equals sign", R"(<add key="AeTitle" value ="HALVORINE"/>)",
     "AeTitle", std::nullopt},
    {"no <add", R"(<set key="AeTitle" value="HALVORINE"/>)", "AeTitle", std::nullopt},
    {"no closing quote of the value", R"(<add key="AeTitle" value="HALVORINE/>)", "AeTitle",
     std::nullopt},
    {"key= searched behind <add", R"(text key="x" <add key="AeTitle" value="HALVORINE"/>)",
     "AeTitle", "HALVORINE"},
    {"value= searched behind the key's opening quote", R"(<add key="value=" x="AeTitle"/>)",
     "value=", " x="},
    {"inside a comment", R"(<!-- <add key="AeTitle" value="HALVORINE"/> -->)", "AeTitle",
     "HALVORINE"},
    {"entities stay", R"(<add key="AeTitle" value="A&amp;B"/>)", "AeTitle", "A&amp;B"},
    {"the whole host file",
     "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<configuration>\n  <appSettings>\n"
     "    <add key=\"AeTitle\" value=\"HALVORINE\"/>\n  </appSettings>\n</configuration>\n",
     "AeTitle", "HALVORINE"},
};

TEST(SettingsHelperTest, ScansAddLines) {
  for (const ScanCase& c : kScanCases) {
    TempFolder temp;
    WriteWholeFile(temp.Path("app.config"), c.content);
    SettingsHelper settings;
    settings.Load(temp.Path("app.config"));
    EXPECT_EQ(ValueOf(settings, c.key), c.value) << c.name;
  }
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
