// Where failures become status codes: the one way out of the service for a failure. No
// exception crosses an entry operation.
#ifndef HALVORINE_SERVICE_FAILUREBOUNDARY_H
#define HALVORINE_SERVICE_FAILUREBOUNDARY_H

#include <halvorine/com.h>

#include "support/MyException.h"

namespace halvorine {

inline constexpr char16_t kUnknownError[] = u"The Halvorine caught an unknown error.";

// Makes a fresh error record for the calling thread (interface IDicomDirImpl, the description
// message, "Unknown Error" for null) and returns status, also when the record can't be made.
HRESULT ReportFailure(const char16_t* message, HRESULT status) noexcept;

// Reports a MyException with its ToXml text and E_FAIL.
HRESULT ReportException(const MyException& failure) noexcept;

// Runs an entry operation's steps, which return its status. A MyException is reported with its
// ToXml text, anything else with kUnknownError; both give E_FAIL.
template <class Steps>
HRESULT RunGuarded(Steps&& steps) noexcept {
  try {
    return steps();
  } catch (const MyException& failure) {
    return ReportException(failure);
  } catch (...) {
    return ReportFailure(kUnknownError, E_FAIL);
  }
}

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_FAILUREBOUNDARY_H
