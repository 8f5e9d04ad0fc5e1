#include "service/Registrar.h"

#include <algorithm>
#include <cstdio>

#include "platform/ModulePath.h"
#include "service/TypeLibrary.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace halvorine {

struct Registrar::Step {
  HALVOCOM_REGISTRY_ACTION action;
  std::u16string key;
  const char16_t* valueName;
  std::u16string value;
  bool hasValue;
};

namespace {

std::u16string Text(REFGUID guid) {
  OLECHAR text[39];
  StringFromGUID2(guid, text, 39);
  return text;
}

std::string ComponentPath() {
  std::string path = GetLoadedModulePath(reinterpret_cast<void*>(&RegisterComponent));
  if (path.empty()) Raise("Registrar", __LINE__, "Can't find the path of the component.");
  return path;
}

// The replacements that every script of the component may use.
Registrar ComponentRegistrar() {
  const TypeLibrary& library = DicomDirLib();
  const std::string module = ComponentPath();
  char version[16];
  char lcid[16];
  std::snprintf(version, sizeof version, "%x.%x", library.majorVersion, library.minorVersion);
  std::snprintf(lcid, sizeof lcid, "%x", library.lcid);
  Registrar registrar;
  registrar.Replace(u"APPID", Text(APPID_DicomDir));
  registrar.Replace(u"MODULE", ToWide(module));
  registrar.Replace(u"MODULEDIR", ToWide(ParentPath(module)));
  registrar.Replace(u"LIBID", Text(library.libid));
  registrar.Replace(u"VERSION", ToWide(version));
  registrar.Replace(u"LCID", ToWide(lcid));
  registrar.Replace(u"HELPSTRING", library.helpText);
  registrar.Replace(u"PLATFORM", sizeof(void*) == 8 ? u"linux64" : u"linux32");
  return registrar;
}

// The component's scripts in the order of registration, each with its replacements.
std::vector<std::pair<Registrar, RegistrationScript>> ComponentScripts() {
  const Registrar common = ComponentRegistrar();
  std::vector<std::pair<Registrar, RegistrationScript>> scripts{{common, ApplicationScript()}};
  for (const ClassRegistration& entry : RegisteredClasses()) {
    Registrar registrar = common;
    registrar.Replace(u"CLSID", Text(entry.clsid));
    registrar.Replace(u"PROGID", entry.progId);
    registrar.Replace(u"VIPROGID", entry.versionIndependentProgId);
    registrar.Replace(u"DESCRIPTION", entry.description);
    scripts.emplace_back(std::move(registrar), ClassScript());
  }
  scripts.emplace_back(common, TypeLibraryScript());
  return scripts;
}

}  // namespace

void Registrar::Replace(std::u16string_view name, std::u16string text) {
  replacements_.emplace_back(u"%" + std::u16string(name) + u"%", std::move(text));
}

std::u16string Registrar::Substitute(const char16_t* pattern) const {
  std::u16string text;
  for (std::u16string_view rest = pattern; !rest.empty();) {
    const auto same =
        std::find_if(replacements_.begin(), replacements_.end(),
                     [&](const auto& replacement) { return rest.starts_with(replacement.first); });
    if (same != replacements_.end()) {
      text += same->second;
      rest.remove_prefix(same->first.size());
    } else {
      text += rest.front();
      rest.remove_prefix(1);
    }
  }
  return text;
}

HRESULT Registrar::Register(RegistrationScript script) const {
  std::vector<Step> steps;
  for (const ScriptKey& entry : script) {
    const std::u16string key = Substitute(entry.key);
    if (entry.removal == Removal::kReplaced) {
      steps.push_back({HALVOCOM_REGISTRY_DELETE_TREE, key, nullptr, {}, false});
    }
    const bool hasDefault = entry.defaultValue != nullptr;
    steps.push_back({HALVOCOM_REGISTRY_SET, key, nullptr,
                     hasDefault ? Substitute(entry.defaultValue) : std::u16string(), hasDefault});
    if (entry.valueName != nullptr) {
      steps.push_back({HALVOCOM_REGISTRY_SET, key, entry.valueName, Substitute(entry.value), true});
    }
  }
  return Apply(steps);
}

HRESULT Registrar::Unregister(RegistrationScript script) const {
  std::vector<Step> steps;
  for (auto entry = script.rbegin(); entry != script.rend(); ++entry) {
    if (entry->removal == Removal::kNever) continue;
    const HALVOCOM_REGISTRY_ACTION action = entry->removal == Removal::kIfEmpty
                                                ? HALVOCOM_REGISTRY_DELETE_IF_EMPTY
                                                : HALVOCOM_REGISTRY_DELETE_TREE;
    steps.push_back({action, Substitute(entry->key), nullptr, {}, false});
  }
  return Apply(steps);
}

HRESULT Registrar::Apply(const std::vector<Step>& steps) {
  std::vector<HALVOCOM_REGISTRY_STEP> calls;
  for (const Step& step : steps) {
    calls.push_back({step.action, step.key.c_str(), step.valueName,
                     step.hasValue ? step.value.c_str() : nullptr});
  }
  return HalvocomUpdateRegistry(calls.data(), static_cast<ULONG>(calls.size()));
}

HRESULT RegisterComponent() {
  for (const auto& [registrar, script] : ComponentScripts()) {
    if (HRESULT hr = registrar.Register(script); FAILED(hr)) return hr;
  }
  return S_OK;
}

HRESULT UnregisterComponent() {
  const auto scripts = ComponentScripts();
  for (auto entry = scripts.rbegin(); entry != scripts.rend(); ++entry) {
    if (HRESULT hr = entry->first.Unregister(entry->second); FAILED(hr)) return hr;
  }
  return S_OK;
}

}  // namespace halvorine
