#include "platform/com/RegistryContent.h"

#include <gtest/gtest.h>

#include <string>

namespace halvorine {
namespace {

const std::string kHeader = "Windows Registry Editor Version 5.00\n\n";

std::string ValueOf(const RegistryContent& content, const std::string& key,
                    const std::string& name) {
  const std::string* value = content.Value(key, name);
  return value == nullptr ? "(none)" : *value;
}

// The component's own registration pins the common form (tests/service); here, what it doesn't
// show: escapes, keys that differ in case only, a sibling that sorts inside a subtree, and
// deletion, which must spare that sibling and keys that aren't empty.
TEST(RegistryContent, WritesKeysInTreeOrderWithAncestorsAndEscapesAndDeletesSubtrees) {
  RegistryContent content;
  content.SetValue("CLSID\\{B}\\InprocServer32", "ThreadingModel", "Both");
  content.SetValue("clsid\\{b}\\inprocserver32", "", "/lib/x.so");
  content.SetValue("CLSID\\{B} old", "", "sorts after the subtree");
  content.SetValue("AppID\\x", "Path", "C:\\dir \"quoted\"");
  const std::string appId =
      "[HKEY_CLASSES_ROOT\\AppID]\n\n[HKEY_CLASSES_ROOT\\AppID\\x]\n\"Path\"=\"C:\\\\dir "
      "\\\"quoted\\\"\"\n\n";
  const std::string old = "[HKEY_CLASSES_ROOT\\CLSID\\{B} old]\n@=\"sorts after the subtree\"\n\n";
  const std::string text = kHeader + appId +
                           "[HKEY_CLASSES_ROOT\\CLSID]\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID\\{B}]\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID\\{B}\\InprocServer32]\n"
                           "@=\"/lib/x.so\"\n"
                           "\"ThreadingModel\"=\"Both\"\n\n" +
                           old;
  EXPECT_EQ(content.Serialize(), text);
  std::string problem;
  RegistryContent again;
  ASSERT_TRUE(again.Parse(text, &problem)) << problem;
  EXPECT_EQ(again.Serialize(), text);

  content.DeleteTree("clsid\\{b}");
  content.DeleteTree("CLSID\\{missing}");
  content.DeleteIfEmpty("CLSID\\{B} old");
  content.DeleteIfEmpty("AppID");
  EXPECT_EQ(content.Serialize(), kHeader + appId + "[HKEY_CLASSES_ROOT\\CLSID]\n\n" + old);
  content.DeleteTree("AppID\\x");
  content.DeleteIfEmpty("AppID");
  EXPECT_EQ(content.Serialize(), kHeader + "[HKEY_CLASSES_ROOT\\CLSID]\n\n" + old);
}

TEST(RegistryContent, ReadsWhatPeopleWriteBlindToCase) {
  RegistryContent content;
  std::string problem;
  ASSERT_TRUE(content.Parse(
      "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n; a comment\r\n"
      "[hkey_classes_root\\A\\B]\r\n\"Name\"=\"x\"\r\n   \r\n[HKEY_CLASSES_ROOT\\a]\n@=\"\"",
      &problem))
      << problem;
  EXPECT_EQ(ValueOf(content, "a\\b", "NAME"), "x");
  EXPECT_EQ(ValueOf(content, "A", ""), "");
  EXPECT_EQ(ValueOf(content, "A", "Name"), "(none)");
  EXPECT_EQ(ValueOf(content, "A\\B\\C", ""), "(none)");
}

// A failed parse leaves the content empty.
TEST(RegistryContent, RefusesTextThatIsNoRegistryExportAtItsFirstBadLine) {
  const std::string bad =
      " is not a key below HKEY_CLASSES_ROOT, a string value in a key, a comment or a blank line";
  const std::string key = kHeader + "[HKEY_CLASSES_ROOT\\A]\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", "the file is empty"},
      {"REGEDIT4\n", "line 1 isn't \"Windows Registry Editor Version 5.00\""},
      {kHeader + "@=\"value outside a key\"\n", "line 3" + bad},
      {kHeader + "[HKEY_CURRENT_USER\\Software]\n", "line 3" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT]\n", "line 3" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A\\\\B]\n", "line 3" + bad},
      {kHeader + "[-HKEY_CLASSES_ROOT\\A]\n", "line 3" + bad},
      {key + "\"n\"=dword:00000001\n", "line 4" + bad},
      {key + "@=\"unknown \\n escape\"\n", "line 4" + bad},
      {key + "@=\"unclosed\n", "line 4" + bad},
      {key + "@=\"a\" trailing\n", "line 4" + bad},
  };
  for (const auto& [text, expected] : cases) {
    RegistryContent content;
    content.SetValue("Before", "", "gone after a failed parse");
    std::string problem;
    EXPECT_FALSE(content.Parse(text, &problem)) << text;
    EXPECT_EQ(problem, expected) << text;
    EXPECT_EQ(content.Serialize(), kHeader);
  }
}

}  // namespace
}  // namespace halvorine
