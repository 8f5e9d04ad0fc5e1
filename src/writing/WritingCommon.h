// What the units of the disc writer share: the unit that their failures name, the check of a
// platform call's status, the joining of paths and the making of text elements.
#ifndef HALVORINE_WRITING_WRITINGCOMMON_H
#define HALVORINE_WRITING_WRITINGCOMMON_H

#include <halvorine/com.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "platform/ModulePath.h"
#include "support/MyException.h"

namespace halvorine {

// Every failure of a write is reported as one of the service's own.
inline constexpr char kWriterUnit[] = "DicomDirImpl";

// Raises "COM method failed. HRESULT=..." with the caller's line for a failing status.
inline void CheckStatus(HRESULT status, int line) {
  if (FAILED(status)) RaiseStatus(status, kWriterUnit, line);
}

// parent, a separator unless parent ends in one, name.
inline std::string JoinPath(std::string_view parent, std::string_view name) {
  std::string path(parent);
  if (path.empty() || path.back() != kPathSeparator) path += kPathSeparator;
  path += name;
  return path;
}

using DicomEngine::MakeText;

}  // namespace halvorine

#endif  // HALVORINE_WRITING_WRITINGCOMMON_H
