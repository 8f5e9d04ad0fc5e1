#include "support/MyException.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "support/TextConversion.h"

namespace halvorine {
namespace {

std::string FormatBoundedV(std::size_t bufferSize, const char* format, va_list arguments) {
  std::string text(bufferSize, '\0');
  const int wanted = std::vsnprintf(text.data(), bufferSize, format, arguments);
  const std::size_t kept = wanted < 0 ? 0 : std::min<std::size_t>(wanted, bufferSize - 1);
  text.resize(kept);
  return text;
}

}  // namespace

MyException::MyException(const std::string& message) : std::runtime_error(message) {}

MyException::MyException(const std::string& message, const MyException& inner)
    : std::runtime_error(message), innerException_(std::make_unique<MyException>(inner)) {}

MyException::MyException(const MyException& other)
    : std::runtime_error(other.what()),
      innerException_(other.innerException_ ? std::make_unique<MyException>(*other.innerException_)
                                            : nullptr) {}

MyException::~MyException() = default;

const char* MyException::what() const noexcept { return std::runtime_error::what(); }

std::u16string MyException::ToXml() const {
  std::u16string xml = u"<exception ";
  xml += u"Message";
  xml += u"=\"";
  xml += ToWide(what());
  xml += u"\"";
  xml += u">";
  if (innerException_) xml += innerException_->ToXml();
  xml += u"</exception>";
  return xml;
}

std::string FormatBounded(std::size_t bufferSize, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatBoundedV(bufferSize, format, arguments);
  va_end(arguments);
  return text;
}

void Raise(const char* unit, int line, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string proper = FormatBoundedV(kMessageBufferSize, format, arguments);
  va_end(arguments);
  throw MyException(
      FormatBounded(kMessageBufferSize, "%s File=%s, Line=%d", proper.c_str(), unit, line));
}

void RaiseStatus(HRESULT status, const char* unit, int line) {
  throw MyException(FormatBounded(kMessageBufferSize,
                                  "COM method failed. HRESULT=%x, File=%s, Line=%d",
                                  static_cast<unsigned>(status), unit, line));
}

}  // namespace halvorine
