// The keys of the registry below HKEY_CLASSES_ROOT and their string values, held in memory in
// the form of a Windows registry export (UTF-8, '\n' line ends):
//
//   Windows Registry Editor Version 5.00
//   <blank line>
//   [HKEY_CLASSES_ROOT\CLSID\{...}]         one section per key, ancestors included
//   @="DicomDirImpl Class"                  the default value, first
//   "AppID"="{...}"                         named values, in the order they were made
//   <blank line>
//
// In quoted text '\' and '"' are escaped with '\'. Key paths and value names compare without
// regard to ASCII case and keep the spelling they were made with; keys stand in tree order.
#ifndef HALVORINE_PLATFORM_COM_REGISTRYCONTENT_H
#define HALVORINE_PLATFORM_COM_REGISTRYCONTENT_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace halvorine {

class RegistryContent {
 public:
  // Replaces the content with that of a registry export. Besides sections and string values it
  // accepts blank lines, ';' comments, '\r' before a line end and a UTF-8 byte-order mark. On
  // failure the content is empty and *problem tells the first bad line.
  bool Parse(std::string_view text, std::string* problem);
  std::string Serialize() const;

  // A key path is valid when its components are non-empty and no part of it holds a control
  // character; a value must hold no line break. The changes expect valid arguments.
  static bool IsValidKey(std::string_view key);
  static bool IsValidValue(std::string_view value);

  // Creates key and its ancestors, and sets the value named name ("" for the default) to value.
  void SetValue(std::string_view key, std::string_view name, std::string_view value);
  void CreateKey(std::string_view key);
  void DeleteTree(std::string_view key);
  void DeleteIfEmpty(std::string_view key);

  // The value named name ("" for the default) of key, or null when either is missing.
  const std::string* Value(std::string_view key, std::string_view name) const;

 private:
  struct NamedValue {
    std::string name;
    std::string data;
  };
  using Values = std::vector<NamedValue>;
  // Case-blind order in which a key's subkeys follow it directly.
  struct TreeOrder {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };

  Values& Create(std::string_view key);
  bool ParseLine(std::string_view line, Values** current);

  // Each key under the spelling it was made with.
  std::map<std::string, Values, TreeOrder> keys_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_REGISTRYCONTENT_H
