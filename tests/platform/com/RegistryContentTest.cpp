#include "platform/com/RegistryContent.h"

#include <gtest/gtest.h>

#include <string>

namespace halvorine {
namespace {

const std::string kHeader = "Windows Registry Editor Version 5.00\n\n";

TEST(RegistryContent, WritesKeysInTreeOrderWithAncestorsAndEscapes) {
  RegistryContent content;
  content.SetValue("CLSID\\{B}\\InprocServer32", "ThreadingModel", "Both");
  content.SetValue("clsid\\{b}\\inprocserver32", "", "/lib/x.so");
  content.SetValue("CLSID\\{B} old", "", "sorts after the subtree");
  content.SetValue("AppID\\x", "Path", "C:\\dir \"quoted\"");
  const std::string text = kHeader +
                           "[HKEY_CLASSES_ROOT\\AppID]\n\n"
                           "[HKEY_CLASSES_ROOT\\AppID\\x]\n"
                           "\"Path\"=\"C:\\\\dir \\\"quoted\\\"\"\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID]\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID\\{B}]\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID\\{B}\\InprocServer32]\n"
                           "@=\"/lib/x.so\"\n"
                           "\"ThreadingModel\"=\"Both\"\n\n"
                           "[HKEY_CLASSES_ROOT\\CLSID\\{B} old]\n"
                           "@=\"sorts after the subtree\"\n\n";
  EXPECT_EQ(content.Serialize(), text);
  std::string problem;
  RegistryContent again;
  ASSERT_TRUE(again.Parse(text, &problem)) << problem;
  EXPECT_EQ(again.Serialize(), text);
}

TEST(RegistryContent, ReadsWhatPeopleWriteBlindToCase) {
  RegistryContent content;
  std::string problem;
  ASSERT_TRUE(content.Parse(
      "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n; a comment\r\n"
      "[hkey_classes_root\\A\\B]\r\n\"Name\"=\"x\"\r\n   \r\n[HKEY_CLASSES_ROOT\\a]\n@=\"\"",
      &problem))
      << problem;
  ASSERT_NE(content.Value("a\\b", "NAME"), nullptr);
  EXPECT_EQ(*content.Value("a\\b", "NAME"), "x");
  ASSERT_NE(content.Value("A", ""), nullptr);
  EXPECT_EQ(*content.Value("A", ""), "");
  EXPECT_EQ(content.Value("A", "Name"), nullptr);
  EXPECT_EQ(content.Value("A\\B\\C", ""), nullptr);
}

TEST(RegistryContent, DeletesASubtreeOrAnEmptyKeyAndNothingBeside) {
  RegistryContent content;
  content.SetValue("CLSID\\{A}\\ProgID", "", "a");
  content.SetValue("CLSID\\{A}B", "", "same start");
  content.SetValue("CLSID\\{A} B", "", "sorts inside");
  content.SetValue("TypeLib\\{L}\\4.0", "", "help");
  content.DeleteTree("clsid\\{a}");
  content.DeleteTree("CLSID\\{missing}");
  content.DeleteIfEmpty("TypeLib\\{L}");
  content.DeleteIfEmpty("CLSID\\{A}B");
  EXPECT_EQ(content.Serialize(), kHeader +
                                     "[HKEY_CLASSES_ROOT\\CLSID]\n\n"
                                     "[HKEY_CLASSES_ROOT\\CLSID\\{A} B]\n@=\"sorts inside\"\n\n"
                                     "[HKEY_CLASSES_ROOT\\CLSID\\{A}B]\n@=\"same start\"\n\n"
                                     "[HKEY_CLASSES_ROOT\\TypeLib]\n\n"
                                     "[HKEY_CLASSES_ROOT\\TypeLib\\{L}]\n\n"
                                     "[HKEY_CLASSES_ROOT\\TypeLib\\{L}\\4.0]\n@=\"help\"\n\n");
  content.DeleteTree("TypeLib\\{L}\\4.0");
  content.DeleteIfEmpty("TypeLib\\{L}");
  EXPECT_EQ(content.Value("TypeLib\\{L}\\4.0", ""), nullptr);
  EXPECT_EQ(content.Serialize().find("{L}"), std::string::npos);
}

TEST(RegistryContent, RefusesTextThatIsNoRegistryExportAtItsFirstBadLine) {
  const std::string bad =
      " is not a key below HKEY_CLASSES_ROOT, a string value in a key, a comment or a blank line";
  const std::pair<std::string, std::string> cases[] = {
      {"", "the file is empty"},
      {"REGEDIT4\n", "line 1 isn't \"Windows Registry Editor Version 5.00\""},
      {kHeader + "@=\"value outside a key\"\n", "line 3" + bad},
      {kHeader + "[HKEY_CURRENT_USER\\Software]\n", "line 3" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT]\n", "line 3" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A\\\\B]\n", "line 3" + bad},
      {kHeader + "[-HKEY_CLASSES_ROOT\\A]\n", "line 3" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A]\n\"n\"=dword:00000001\n", "line 4" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A]\n@=\"unknown \\n escape\"\n", "line 4" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A]\n@=\"unclosed\n", "line 4" + bad},
      {kHeader + "[HKEY_CLASSES_ROOT\\A]\n@=\"a\" trailing\n", "line 4" + bad},
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

TEST(RegistryContent, ValidatesKeysAndValues) {
  for (const char* key : {"A", "A\\B", "CLSID\\{X} with space"}) {
    EXPECT_TRUE(RegistryContent::IsValidKey(key)) << key;
  }
  for (const char* key : {"", "\\A", "A\\", "A\\\\B", "A\nB", "A\tB"}) {
    EXPECT_FALSE(RegistryContent::IsValidKey(key)) << key;
  }
  EXPECT_TRUE(RegistryContent::IsValidValue("C:\\x \"y\""));
  EXPECT_FALSE(RegistryContent::IsValidValue("two\nlines"));
  EXPECT_FALSE(RegistryContent::IsValidValue("cr\r"));
}

}  // namespace
}  // namespace halvorine
