// The host application's settings: the "<add key="..." value="..."/>" lines of its configuration
// file, read by a line scanner (no XML parser). One file per process, read once.
#ifndef HALVORINE_SUPPORT_SETTINGSHELPER_H
#define HALVORINE_SUPPORT_SETTINGSHELPER_H

#include <map>
#include <string>

namespace halvorine {

class SettingsHelper {
 public:
  // The table of the process, filled by its first LoadSettings and kept to its end.
  static void LoadSettings(const std::string& name);
  static std::string GetSetting(const std::string& key);

  // A name without '/' is looked for beside the host's executable. The same name again does
  // nothing; another name fails. A file that can't be opened counts as loaded, with no entries.
  void Load(const std::string& name);
  // Fails, with a bare message, for a key that no line gave.
  std::string Get(const std::string& key) const;

 private:
  void ParseSettingLine(const std::string& line);

  std::string settingsFileName_;
  std::map<std::string, std::string> settingsTable_;
};

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_SETTINGSHELPER_H
