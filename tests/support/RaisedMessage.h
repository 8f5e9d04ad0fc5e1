// Test helpers for the texts of failures.
#ifndef HALVORINE_TESTS_SUPPORT_RAISEDMESSAGE_H
#define HALVORINE_TESTS_SUPPORT_RAISEDMESSAGE_H

#include <regex>
#include <string>

#include "support/MyException.h"

namespace halvorine {

// The text of the MyException that action raises, or "nothing raised".
template <class Action>
std::string RaisedMessage(Action action) {
  try {
    action();
  } catch (const MyException& failure) {
    return failure.what();
  }
  return "nothing raised";
}

// Whether message is proper in the form "%s File=%s, Line=%d" of unit, with any line number.
inline bool IsPlaced(const std::string& message, const std::string& proper,
                     const std::string& unit) {
  const std::string prefix = proper + " File=" + unit + ", Line=";
  return message.compare(0, prefix.size(), prefix) == 0 &&
         std::regex_match(message.substr(prefix.size()), std::regex("[1-9][0-9]*"));
}

}  // namespace halvorine

#endif  // HALVORINE_TESTS_SUPPORT_RAISEDMESSAGE_H
