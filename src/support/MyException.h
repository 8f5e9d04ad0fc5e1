// The one failure type of the system's own code. Its message carries the place of the fault:
//   "<text> File=<unit>, Line=<line>"                            (Raise)
//   "COM method failed. HRESULT=<hex>, File=<unit>, Line=<line>"  (RaiseStatus)
// where <unit> is the source unit's name and <line> the raising statement's line in it.
// At the boundary ToXml turns it, with its nested failures, into the host's error description.
#ifndef HALVORINE_SUPPORT_MYEXCEPTION_H
#define HALVORINE_SUPPORT_MYEXCEPTION_H

#include <halvorine/com.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace halvorine {

class MyException : std::runtime_error {
 public:
  explicit MyException(const std::string& message);
  // Keeps a deep copy of inner as its nested failure.
  MyException(const std::string& message, const MyException& inner);
  MyException(const MyException& other);
  MyException& operator=(const MyException&) = delete;
  ~MyException() override;

  const char* what() const noexcept override;
  // <exception Message="what()">nested ToXml</exception>, nothing escaped. Throws std::bad_alloc
  // when memory runs out.
  virtual std::u16string ToXml() const;

 private:
  std::unique_ptr<MyException> innerException_;
};

// The messages' fixed buffer: a longer text is cut at its end.
constexpr std::size_t kMessageBufferSize = 1024;

// printf into a buffer of bufferSize bytes (the terminator included), cut where it doesn't fit.
std::string FormatBounded(std::size_t bufferSize, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// Formats the message proper, wraps it in the first form and throws it.
[[noreturn]] void Raise(const char* unit, int line, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// Throws the second form, for a failing status of a platform call.
[[noreturn]] void RaiseStatus(HRESULT status, const char* unit, int line);

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_MYEXCEPTION_H
