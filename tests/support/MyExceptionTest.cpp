#include "support/MyException.h"

#include <gtest/gtest.h>

#include <string>

#include "RaisedMessage.h"

namespace halvorine {
namespace {

// The usual forms of Raise, RaiseStatus and ToXml are pinned by FailureBoundaryTest and by every
// failure text of the suite; here the formats' edges. A message longer than the buffer is cut.
TEST(MyExceptionTest, RaiseWrapsTheMessageWithItsPlace) {
  const std::string suffix = " File=U, Line=1";
  const std::string fits(kMessageBufferSize - 1 - suffix.size(), 'f');
  const std::string huge(5000, 'h');
  const struct {
    std::string message;
    std::string expected;
  } cases[] = {
      {RaisedMessage([] { Raise("VRContainer", 7, "%d and %x", -3, 255u); }),
       "-3 and ff File=VRContainer, Line=7"},
      {RaisedMessage([] { RaiseStatus(DISP_E_BADINDEX, "DicomDirImpl", 9); }),
       "COM method failed. HRESULT=8002000b, File=DicomDirImpl, Line=9"},
      {RaisedMessage([] { RaiseStatus(S_FALSE, "DicomDirImpl", 9); }),
       "COM method failed. HRESULT=1, File=DicomDirImpl, Line=9"},
      {RaisedMessage([&] { Raise("U", 1, "%s", fits.c_str()); }), fits + suffix},
      {RaisedMessage([&] { Raise("U", 1, "%s!", fits.c_str()); }),
       fits + "!" + suffix.substr(0, suffix.size() - 1)},
      {RaisedMessage([&] { Raise("U", 1, "%s", huge.c_str()); }),
       std::string(kMessageBufferSize - 1, 'h')},
      // A text formatted on its own is cut at its own buffer size, with no NUL kept.
      {FormatBounded(8, "%s", "abcdefghij"), "abcdefg"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.message, c.expected);
  // The message goes into the XML wide; FailureBoundaryTest shows the nesting.
  EXPECT_EQ(MyException("Gr\xC3\xB6\xC3\x9F \xE2\x82\xAC").ToXml(),
            u"<exception Message=\"Gr\u00F6\u00DF \u20AC\"></exception>");
}

}  // namespace
}  // namespace halvorine
