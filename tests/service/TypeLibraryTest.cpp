// The type library's table, the public header and idl/DicomDir.idl tell of the same interfaces,
// methods, arguments, classes and identifiers; each is parsed here on its own.
#include "service/TypeLibrary.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "service/RegistrationScripts.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

struct Method {
  std::string name;
  std::vector<std::string> arguments;
  std::string helpText;
};

struct Definition {
  std::string name;
  std::string uuid;
  std::string helpText;
  std::vector<Method> methods;
};

std::string Uuid(REFGUID guid) {
  OLECHAR text[39];
  StringFromGUID2(guid, text, 39);
  return ToNarrow(std::u16string_view(text + 1, 36));
}

// The last identifier of each comma-separated argument, after [attributes] are dropped.
std::vector<std::string> ArgumentNames(std::string arguments) {
  arguments = std::regex_replace(arguments, std::regex(R"(\[[^\]]*\])"), "");
  static const std::regex kLastName(R"((\w+)\s*(,|$))");
  std::vector<std::string> names;
  for (std::sregex_iterator at(arguments.begin(), arguments.end(), kLastName), end; at != end;
       ++at) {
    names.push_back((*at)[1]);
  }
  return names;
}

std::string Attribute(const std::string& attributes, const std::string& name) {
  std::smatch value;
  const std::regex form(name + R"(\(\"?([^\)\"]*)\"?\))");
  return std::regex_search(attributes, value, form) ? value[1].str() : "(none)";
}

// The definitions of a file in their order, each with its methods in slot order. Both forms
// capture the attributes, the name and the body or the arguments, in that order.
std::vector<Definition> Definitions(const char* path, const std::string& definitionForm,
                                    const std::string& methodForm) {
  const std::string text = ReadWholeFile(path);
  const std::regex definition(definitionForm), method(methodForm);
  std::vector<Definition> definitions;
  for (std::sregex_iterator at(text.begin(), text.end(), definition), end; at != end; ++at) {
    Definition entry{(*at)[2], Attribute((*at)[1], "uuid"), Attribute((*at)[1], "helpstring"), {}};
    const std::string body = (*at)[3];
    for (std::sregex_iterator m(body.begin(), body.end(), method); m != end; ++m) {
      entry.methods.push_back(
          {(*m)[2], ArgumentNames((*m)[3]), Attribute((*m)[1].str(), "helpstring")});
    }
    definitions.push_back(entry);
  }
  return definitions;
}

std::vector<Definition> IdlDefinitions(const std::string& kind) {
  return Definitions(IDL_PATH, R"(\[([^\]]*)\]\s*)" + kind + R"( (\w+)[^\{;]*\{([\s\S]*?)\n\s*\};)",
                     R"(\[([^\]]*)\]\s*HRESULT (\w+)\(([^;]*)\);)");
}

TEST(TypeLibrary, InterfacesAgreeWithTheHeaderAndTheIdl) {
  const TypeLibrary& library = DicomDirLib();
  const std::vector<Definition> header =
      Definitions(HEADER_PATH, R"(()struct (\w+) : IUnknown \{([\s\S]*?)\n protected:)",
                  R"(()virtual HRESULT (\w+)\(([^\)]*)\) = 0;)");
  const std::vector<Definition> idl = IdlDefinitions("interface");
  ASSERT_EQ(idl.size(), library.interfaces.size());
  EXPECT_EQ(header.size(), library.interfaces.size());
  for (std::size_t i = 0; i < idl.size(); ++i) {
    const TypeLibraryInterface& entry = library.interfaces[i];
    const std::string name = ToNarrow(entry.name);
    SCOPED_TRACE(name);
    EXPECT_EQ(idl[i].name, name);
    EXPECT_EQ(idl[i].uuid, Uuid(entry.iid));
    EXPECT_EQ(idl[i].helpText, ToNarrow(InterfaceHelpText(entry)));
    const auto in =
        std::find_if(header.begin(), header.end(), [&](auto& d) { return d.name == name; });
    ASSERT_NE(in, header.end());
    const std::vector<Method>& declared = in->methods;
    ASSERT_EQ(entry.methods.size(), declared.size());
    ASSERT_EQ(idl[i].methods.size(), declared.size());
    for (std::size_t slot = 0; slot < declared.size(); ++slot) {
      const Method& defined = idl[i].methods[slot];
      EXPECT_EQ(ToNarrow(entry.methods[slot]), declared[slot].name) << "slot " << slot;
      EXPECT_EQ(defined.name, declared[slot].name) << "slot " << slot;
      EXPECT_EQ(defined.arguments, declared[slot].arguments) << defined.name;
      EXPECT_EQ(defined.helpText, ToNarrow(MethodHelpText(entry.methods[slot])));
    }
  }
}

TEST(TypeLibrary, HeadsTheIdlsLibraryInItsOrder) {
  const TypeLibrary& library = DicomDirLib();
  const std::string text = ReadWholeFile(IDL_PATH);
  std::smatch head;
  ASSERT_TRUE(std::regex_search(text, head, std::regex(R"(\[([^\]]*)\]\s*library (\w+))")));
  EXPECT_EQ(head[2], ToNarrow(library.name));
  EXPECT_EQ(Attribute(head[1], "uuid"), Uuid(library.libid));
  EXPECT_EQ(Attribute(head[1], "version"),
            std::to_string(library.majorVersion) + "." + std::to_string(library.minorVersion));
  EXPECT_EQ(std::stoul(Attribute(head[1], "lcid"), nullptr, 16), library.lcid);
  EXPECT_EQ(Attribute(head[1], "helpstring"), ToNarrow(library.helpText));

  const std::vector<Definition> classes = IdlDefinitions("coclass");
  ASSERT_EQ(classes.size(), library.classes.size());
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const CLSID& clsid = *library.classes[i];
    const ClassRegistration* registration = nullptr;
    for (const ClassRegistration& entry : RegisteredClasses()) {
      if (IsEqualCLSID(entry.clsid, clsid)) registration = &entry;
    }
    ASSERT_NE(registration, nullptr);
    EXPECT_EQ(classes[i].name, ToNarrow(registration->name));
    EXPECT_EQ(classes[i].uuid, Uuid(clsid));
    EXPECT_EQ(classes[i].helpText, ToNarrow(registration->description));
  }
}

}  // namespace
}  // namespace halvorine
