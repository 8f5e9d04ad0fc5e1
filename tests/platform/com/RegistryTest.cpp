#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <string>

#include "TempRegistry.h"

// The calls above the registry file: what RegistryContentTest and RegistryFileTest show of the
// layers below isn't repeated here.
namespace halvorine {
namespace {

// {ED660F5F-49A3-4A42-92AF-478F19A6A7A0}
constexpr CLSID kClass = {
    0xED660F5F, 0x49A3, 0x4A42, {0x92, 0xAF, 0x47, 0x8F, 0x19, 0xA6, 0xA7, 0xA0}};

std::u16string TakeDescription() {
  IErrorInfo* record = nullptr;
  if (GetErrorInfo(0, &record) != S_OK) return u"(none)";
  BSTR text = nullptr;
  record->GetDescription(&text);
  std::u16string description = text == nullptr ? u"(null)" : text;
  SysFreeString(text);
  record->Release();
  return description;
}

TEST(GuidText, RoundTripsAndRefusesMalformedIdentifiers) {
  OLECHAR text[39];
  EXPECT_EQ(StringFromGUID2(kClass, text, 38), 0);
  ASSERT_EQ(StringFromGUID2(kClass, text, 39), 39);
  EXPECT_EQ(std::u16string(text), u"{ED660F5F-49A3-4A42-92AF-478F19A6A7A0}");
  CLSID back = GUID_NULL;
  EXPECT_EQ(CLSIDFromString(u"{ed660f5f-49a3-4a42-92af-478f19a6a7a0}", &back), S_OK);
  EXPECT_TRUE(IsEqualCLSID(back, kClass));
  for (const char16_t* bad :
       {u"{ED660F5F-49A3-4A42-92AF-478F19A6A7A}", u"{ED660F5F-49A3-4A42-92AF-478F19A6A7A00}",
        u"{ED660F5F+49A3-4A42-92AF-478F19A6A7A0}", u"{ED660F5F-49A3-4A42-92AF-478F19A6A7AG}"}) {
    EXPECT_EQ(CLSIDFromString(bad, &back), CO_E_CLASSSTRING);
    EXPECT_TRUE(IsEqualCLSID(back, kClass)) << "the out was written";
  }
}

// A class under two names, one of them in lower case, and a name whose identifier is garbled.
TEST(Registry, NamesLeadToClassesAndClassesToTheirName) {
  TempRegistry registry;
  CLSID clsid = GUID_NULL;
  LPOLESTR name = nullptr;
  EXPECT_EQ(CLSIDFromProgID(u"Some.Thing", &clsid), CO_E_CLASSSTRING) << "without a file";
  EXPECT_EQ(ProgIDFromCLSID(kClass, &name), REGDB_E_CLASSNOTREG);
  registry.Write(std::string(kRegistryHeader) +
                 "[HKEY_CLASSES_ROOT\\Some.Thing.1\\CLSID]\n"
                 "@=\"{ED660F5F-49A3-4A42-92AF-478F19A6A7A0}\"\n\n"
                 "[HKEY_CLASSES_ROOT\\Some.Thing\\CLSID]\n"
                 "@=\"{ed660f5f-49a3-4a42-92af-478f19a6a7a0}\"\n\n"
                 "[HKEY_CLASSES_ROOT\\Garbled\\CLSID]\n"
                 "@=\"{ED660F5F-49A3-4A42-92AF-478F19A6A7A}\"\n\n"
                 "[HKEY_CLASSES_ROOT\\CLSID\\{ED660F5F-49A3-4A42-92AF-478F19A6A7A0}\\ProgID]\n"
                 "@=\"Some.Thing.1\"\n\n");
  for (const char16_t* known : {u"Some.Thing.1", u"some.thing"}) {
    clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromProgID(known, &clsid), S_OK);
    EXPECT_TRUE(IsEqualCLSID(clsid, kClass));
    clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromString(known, &clsid), S_OK) << "a name is taken as a programmatic name";
    EXPECT_TRUE(IsEqualCLSID(clsid, kClass));
  }
  for (const char16_t* unknown : {u"Garbled", u"Other.Thing", u"", u"Some.Thing.1\\"}) {
    EXPECT_EQ(CLSIDFromProgID(unknown, &clsid), CO_E_CLASSSTRING);
  }
  ASSERT_EQ(ProgIDFromCLSID(kClass, &name), S_OK);
  EXPECT_EQ(std::u16string(name), u"Some.Thing.1");
  CoTaskMemFree(name);
  EXPECT_EQ(ProgIDFromCLSID(GUID_NULL, &name), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(name, nullptr);

  // A file that can't be parsed fails the lookups; what an update then reports, and that the
  // file stays, the command-line tool's tests pin (tests/tools).
  registry.Write("REGEDIT4\n");
  EXPECT_EQ(CLSIDFromProgID(u"Some.Thing", &clsid), HRESULT_FROM_WIN32(ERROR_BADDB));
  EXPECT_EQ(ProgIDFromCLSID(kClass, &name), HRESULT_FROM_WIN32(ERROR_BADDB));
}

// Each action reaches the content as what it names, and text becomes UTF-8; a change with one
// invalid step (a key that isn't a path of names, a name or value that breaks a line) changes
// nothing.
TEST(Registry, AnUpdateAppliesItsStepsInOrderAsOneChange) {
  TempRegistry registry;
  const HALVOCOM_REGISTRY_STEP steps[] = {
      {HALVOCOM_REGISTRY_SET, u"Old\\Sub", nullptr, u"gone"},
      {HALVOCOM_REGISTRY_SET, u"CLSID\\{X}", u"AppID", u"\u00DCn\u00EFcode"},
      {HALVOCOM_REGISTRY_DELETE_TREE, u"Old", nullptr, nullptr},
      {HALVOCOM_REGISTRY_SET, u"Empty", nullptr, nullptr},
      {HALVOCOM_REGISTRY_SET, u"Kept", nullptr, nullptr},
      {HALVOCOM_REGISTRY_DELETE_IF_EMPTY, u"Empty", nullptr, nullptr},
      {HALVOCOM_REGISTRY_DELETE_IF_EMPTY, u"CLSID", nullptr, nullptr},
  };
  ASSERT_EQ(HalvocomUpdateRegistry(steps, std::size(steps)), S_OK);
  EXPECT_EQ(registry.Text(), std::string(kRegistryHeader) +
                                 "[HKEY_CLASSES_ROOT\\CLSID]\n\n"
                                 "[HKEY_CLASSES_ROOT\\CLSID\\{X}]\n"
                                 "\"AppID\"=\"\xC3\x9Cn\xC3\xAF"
                                 "code\"\n\n"
                                 "[HKEY_CLASSES_ROOT\\Kept]\n\n");
  const HALVOCOM_REGISTRY_STEP bad[] = {
      {HALVOCOM_REGISTRY_SET, nullptr, nullptr, u"1"},
      {HALVOCOM_REGISTRY_SET, u"A\\\\B", nullptr, u"1"},
      {HALVOCOM_REGISTRY_SET, u"\\A", nullptr, u"1"},
      {HALVOCOM_REGISTRY_SET, u"A\\", nullptr, u"1"},
      {HALVOCOM_REGISTRY_SET, u"A\tB", nullptr, u"1"},
      {HALVOCOM_REGISTRY_SET, u"A", u"line\nbreak", u"1"},
      {HALVOCOM_REGISTRY_SET, u"A", nullptr, u"line\nbreak"},
      {HALVOCOM_REGISTRY_SET, u"A", nullptr, u"cr\r"},
      {static_cast<HALVOCOM_REGISTRY_ACTION>(7), u"A", nullptr, nullptr},
  };
  for (const HALVOCOM_REGISTRY_STEP& step : bad) {
    const HALVOCOM_REGISTRY_STEP both[] = {steps[0], step};
    EXPECT_EQ(HalvocomUpdateRegistry(both, 2), E_INVALIDARG);
    EXPECT_EQ(TakeDescription(), u"Step 2 of a registry change is invalid");
  }
  EXPECT_EQ(registry.Text().find("Old"), std::string::npos) << "an invalid change was applied";
}

}  // namespace
}  // namespace halvorine
