#include "service/Registrar.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

#include "ServiceTestSupport.h"
#include "platform/com/RegistryContent.h"
#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

constexpr char kImplServerKey[] = "CLSID\\{ED660F5F-49A3-4A42-92AF-478F19A6A7A0}\\InprocServer32";

// Keys that other components registered, which the component's scripts must leave alone.
const std::string kForeignKeys =
    "[HKEY_CLASSES_ROOT\\AppID\\{00000000-0000-0000-0000-000000000001}]\n"
    "@=\"Other\"\n\n"
    "[HKEY_CLASSES_ROOT\\CLSID\\{00000000-0000-0000-0000-000000000002}]\n"
    "@=\"Other Class\"\n\n"
    "[HKEY_CLASSES_ROOT\\TypeLib\\{3F6B156F-B54E-4D87-9E47-BB22DC0F4200}\\3.0]\n"
    "@=\"An older version\"\n\n";

RegistryContent Parsed(const std::string& text) {
  RegistryContent content;
  std::string problem;
  EXPECT_TRUE(content.Parse(text, &problem)) << problem;
  return content;
}

class RegistrarTest : public ServiceTest {
 protected:
  TempRegistry registry_;
};

TEST_F(RegistrarTest, RegistersTheClassesTheApplicationAndTheTypeLibrary) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  const std::string text = registry_.Text();
  const RegistryContent content = Parsed(text);
  const std::string* module = content.Value(kImplServerKey, "");
  ASSERT_NE(module, nullptr);
  EXPECT_TRUE(std::filesystem::path(*module).is_absolute()) << *module;
  EXPECT_EQ(std::filesystem::canonical(*module), std::filesystem::canonical("/proc/self/exe"));

  const std::string expected = std::regex_replace(
      std::regex_replace(ReadWholeFile(DATA_FOLDER "/registered.reg"), std::regex("%MODULEDIR%"),
                         std::filesystem::path(*module).parent_path().string()),
      std::regex("%MODULE%"), *module);
  EXPECT_EQ(text, expected);

  ASSERT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(registry_.Text(), expected) << "a second registration changed the registry";
}

TEST_F(RegistrarTest, UnregisteringLeavesTheRootsAndWhatOthersWrote) {
  ASSERT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_FALSE(registry_.Exists()) << "unregistering in an empty registry wrote a file";
  registry_.Write(std::string(kRegistryHeader) + kForeignKeys);
  const std::string before = Parsed(registry_.Text()).Serialize();
  ASSERT_EQ(DllRegisterServer(), S_OK);
  ASSERT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(registry_.Text(), before);
}

TEST_F(RegistrarTest, ReplacesTheClassKeyWhole) {
  const std::string key = "CLSID\\{ED660F5F-49A3-4A42-92AF-478F19A6A7A0}";
  registry_.Write(std::string(kRegistryHeader) + "[HKEY_CLASSES_ROOT\\" + key +
                  "]\n\"Extra\"=\"stale\"\n\n[HKEY_CLASSES_ROOT\\" + key + "\\Stale]\n\n");
  ASSERT_EQ(DllRegisterServer(), S_OK);
  const RegistryContent content = Parsed(registry_.Text());
  EXPECT_EQ(content.Value(key, "Extra"), nullptr);
  EXPECT_EQ(registry_.Text().find("\\Stale]"), std::string::npos);
}

}  // namespace
}  // namespace halvorine
