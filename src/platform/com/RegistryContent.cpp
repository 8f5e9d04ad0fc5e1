#include "platform/com/RegistryContent.h"

#include <algorithm>

namespace halvorine {
namespace {

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00";
constexpr std::string_view kRoot = "HKEY_CLASSES_ROOT\\";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The separator sorts ahead of every other character, so that "A\B" comes before "A B".
unsigned char SortKey(char c) {
  if (c == '\\') return 0;
  if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c - 'A' + 'a');
  return static_cast<unsigned char>(c);
}

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return SortKey(x) == SortKey(y);
         });
}

// True when path lies below ancestor.
bool IsBelow(std::string_view path, std::string_view ancestor) {
  return path.size() > ancestor.size() && path[ancestor.size()] == '\\' &&
         SameText(path.substr(0, ancestor.size()), ancestor);
}

void AppendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (char c : text) {
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  out += '"';
}

// Reads a quoted text at the start of *rest and moves *rest behind it.
bool ReadQuoted(std::string_view* rest, std::string* out) {
  if (rest->empty() || rest->front() != '"') return false;
  out->clear();
  for (std::size_t at = 1; at < rest->size(); ++at) {
    char c = (*rest)[at];
    if (c == '"') {
      rest->remove_prefix(at + 1);
      return true;
    }
    if (c == '\\') {
      if (++at == rest->size()) return false;
      c = (*rest)[at];
      if (c != '\\' && c != '"') return false;
    }
    *out += c;
  }
  return false;
}

// The default value (name "") stays first; named values keep the order they were made in.
template <class Values>
void Store(Values& values, std::string_view name, std::string_view data) {
  const auto same = std::find_if(values.begin(), values.end(),
                                 [&](const auto& v) { return SameText(v.name, name); });
  using Value = typename Values::value_type;
  if (same != values.end()) {
    same->data = data;
  } else if (name.empty()) {
    values.insert(values.begin(), Value{std::string(), std::string(data)});
  } else {
    values.push_back(Value{std::string(name), std::string(data)});
  }
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

}  // namespace

bool RegistryContent::TreeOrder::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return SortKey(x) < SortKey(y); });
}

bool RegistryContent::IsValidKey(std::string_view key) {
  if (key.empty() || key.front() == '\\' || key.back() == '\\') return false;
  if (key.find("\\\\") != std::string_view::npos) return false;
  return std::none_of(key.begin(), key.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

bool RegistryContent::IsValidValue(std::string_view value) {
  return value.find_first_of("\r\n") == std::string_view::npos;
}

RegistryContent::Values& RegistryContent::Create(std::string_view key) {
  for (std::size_t slash = key.find('\\'); slash != std::string_view::npos;
       slash = key.find('\\', slash + 1)) {
    keys_.try_emplace(std::string(key.substr(0, slash)));
  }
  return keys_.try_emplace(std::string(key)).first->second;
}

void RegistryContent::CreateKey(std::string_view key) { Create(key); }

void RegistryContent::SetValue(std::string_view key, std::string_view name,
                               std::string_view value) {
  Store(Create(key), name, value);
}

void RegistryContent::DeleteTree(std::string_view key) {
  auto at = keys_.lower_bound(key);
  while (at != keys_.end() && (SameText(at->first, key) || IsBelow(at->first, key))) {
    at = keys_.erase(at);
  }
}

void RegistryContent::DeleteIfEmpty(std::string_view key) {
  const auto at = keys_.find(key);
  if (at == keys_.end() || !at->second.empty()) return;
  const auto next = std::next(at);
  if (next != keys_.end() && IsBelow(next->first, key)) return;
  keys_.erase(at);
}

const std::string* RegistryContent::Value(std::string_view key, std::string_view name) const {
  const auto at = keys_.find(key);
  if (at == keys_.end()) return nullptr;
  for (const NamedValue& value : at->second) {
    if (SameText(value.name, name)) return &value.data;
  }
  return nullptr;
}

std::string RegistryContent::Serialize() const {
  std::string out(kHeader);
  out += "\n\n";
  for (const auto& [path, values] : keys_) {
    out += '[';
    out += kRoot;
    out += path;
    out += "]\n";
    for (const NamedValue& value : values) {
      if (value.name.empty()) {
        out += '@';
      } else {
        AppendQuoted(out, value.name);
      }
      out += '=';
      AppendQuoted(out, value.data);
      out += '\n';
    }
    out += '\n';
  }
  return out;
}

bool RegistryContent::Parse(std::string_view text, std::string* problem) {
  keys_.clear();
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  Values* current = nullptr;
  int number = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    ++number;
    const bool good = number == 1 ? line == kHeader : ParseLine(line, &current);
    if (!good) {
      keys_.clear();
      *problem = "line " + std::to_string(number) +
                 (number == 1 ? " isn't \"" + std::string(kHeader) + "\""
                              : " is not a key below HKEY_CLASSES_ROOT, a string value in a "
                                "key, a comment or a blank line");
      return false;
    }
  }
  if (number == 0) {
    *problem = "the file is empty";
    return false;
  }
  return true;
}

bool RegistryContent::ParseLine(std::string_view line, Values** current) {
  if (IsBlank(line) || line.front() == ';') return true;
  if (line.front() == '[') {
    if (!line.ends_with(']')) return false;
    std::string_view key = line.substr(1, line.size() - 2);
    if (!SameText(key.substr(0, std::min(key.size(), kRoot.size())), kRoot)) return false;
    key.remove_prefix(kRoot.size());
    if (!IsValidKey(key)) return false;
    *current = &Create(key);
    return true;
  }
  std::string name;
  if (line.front() == '@') {
    line.remove_prefix(1);
  } else if (!ReadQuoted(&line, &name)) {
    return false;
  }
  std::string data;
  if (*current == nullptr || !line.starts_with('=')) return false;
  line.remove_prefix(1);
  if (!ReadQuoted(&line, &data) || !line.empty()) return false;
  Store(**current, name, data);
  return true;
}

}  // namespace halvorine
