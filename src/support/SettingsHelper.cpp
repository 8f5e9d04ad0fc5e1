#include "support/SettingsHelper.h"

#include <stdio.h>
#include <stdlib.h>

#include <memory>

#include "platform/ModulePath.h"
#include "support/ComponentStatic.h"
#include "support/MyException.h"

namespace halvorine {
namespace {

constexpr char kUnit[] = "SettingsHelper";

SettingsHelper& ProcessSettings() { return ComponentStatic<SettingsHelper>(); }

}  // namespace

void SettingsHelper::LoadSettings(const std::string& name) { ProcessSettings().Load(name); }

std::string SettingsHelper::GetSetting(const std::string& key) {
  return ProcessSettings().Get(key);
}

void SettingsHelper::Load(const std::string& name) {
  if (name.empty()) Raise(kUnit, __LINE__, "The settings file name is NULL or empty.");
  const std::string path =
      name.find(kPathSeparator) == std::string::npos ? GetModuleDirectory() + name : name;
  if (!settingsFileName_.empty()) {
    if (settingsFileName_ == path) return;
    Raise(kUnit, __LINE__,
          "Already loaded the %s settings file.\r\nAttempt to load a  second different settings "
          "file: %s.",
          settingsFileName_.c_str(), path.c_str());
  }
  settingsFileName_ = path;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "re"), fclose);
  if (file == nullptr) return;
  char* line = nullptr;
  std::size_t capacity = 0;
  // getline's buffer goes also when a line can't be kept for want of memory.
  const std::unique_ptr<char*, void (*)(char**)> lineBuffer(&line,
                                                            [](char** held) { free(*held); });
  for (ssize_t length; (length = getline(&line, &capacity, file.get())) > 0;) {
    const bool fed = line[length - 1] == '\n';
    ParseSettingLine(std::string(line, static_cast<std::size_t>(length - fed)));
  }
}

std::string SettingsHelper::Get(const std::string& key) const {
  const auto found = settingsTable_.find(key);
  if (found == settingsTable_.end()) {
    throw MyException(
        FormatBounded(kMessageBufferSize, "Cannot find the %s setting key.", key.c_str()));
  }
  return found->second;
}

void SettingsHelper::ParseSettingLine(const std::string& line) {
  const std::size_t add = line.find("<add");
  if (add == std::string::npos) return;
  const std::size_t keyWord = line.find("key=", add);
  if (keyWord == std::string::npos) return;
  const std::size_t keyOpen = line.find('"', keyWord);
  if (keyOpen == std::string::npos) return;
  const std::size_t keyClose = line.find('"', keyOpen + 1);
  if (keyClose == std::string::npos) return;
  const std::size_t valueWord = line.find("value=", keyOpen + 1);
  if (valueWord == std::string::npos) return;
  const std::size_t valueOpen = line.find('"', valueWord);
  if (valueOpen == std::string::npos) return;
  const std::size_t valueClose = line.find('"', valueOpen + 1);
  if (valueClose == std::string::npos) return;
  settingsTable_[line.substr(keyOpen + 1, keyClose - keyOpen - 1)] =
      line.substr(valueOpen + 1, valueClose - valueOpen - 1);
}

}  // namespace halvorine
