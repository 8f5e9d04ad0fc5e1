#include "support/MyException.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "RaisedMessage.h"

namespace halvorine {
namespace {

TEST(MyExceptionTest, RaiseWrapsTheMessageWithItsPlace) {
  const struct {
    std::string message;
    std::string expected;
  } cases[] = {
      {RaisedMessage([] { Raise("DicomDirImpl", 42, "Can't open folder %s", "/no/such"); }),
       "Can't open folder /no/such File=DicomDirImpl, Line=42"},
      {RaisedMessage([] { Raise("VRContainer", 7, "%d and %x", -3, 255u); }),
       "-3 and ff File=VRContainer, Line=7"},
      {RaisedMessage([] { Raise("SettingsHelper", 1, "%s", ""); }), " File=SettingsHelper, Line=1"},
      {RaisedMessage([] { RaiseStatus(E_FAIL, "DicomDirImpl", 310); }),
       "COM method failed. HRESULT=80004005, File=DicomDirImpl, Line=310"},
      {RaisedMessage([] { RaiseStatus(DISP_E_BADINDEX, "DicomDirImpl", 9); }),
       "COM method failed. HRESULT=8002000b, File=DicomDirImpl, Line=9"},
      {RaisedMessage([] { RaiseStatus(S_FALSE, "DicomDirImpl", 9); }),
       "COM method failed. HRESULT=1, File=DicomDirImpl, Line=9"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.message, c.expected);
}

TEST(MyExceptionTest, AMessageLongerThanTheBufferIsCut) {
  const std::string suffix = " File=U, Line=1";
  const std::string fits(kMessageBufferSize - 1 - suffix.size(), 'f');
  EXPECT_EQ(RaisedMessage([&] { Raise("U", 1, "%s", fits.c_str()); }), fits + suffix);
  const std::string cut = RaisedMessage([&] { Raise("U", 1, "%s!", fits.c_str()); });
  EXPECT_EQ(cut, fits + "!" + suffix.substr(0, suffix.size() - 1));
  const std::string huge(5000, 'h');
  EXPECT_EQ(RaisedMessage([&] { Raise("U", 1, "%s", huge.c_str()); }),
            std::string(kMessageBufferSize - 1, 'h'));
  // A text formatted on its own is cut at its own buffer size, with no NUL kept.
  EXPECT_EQ(FormatBounded(8, "%s", "abcdefghij"), "abcdefg");
}

// Nested failures close one after the other; the message goes in unescaped and wide. Copies are
// deep and outlive their source.
TEST(MyExceptionTest, ToXml) {
  auto inner = std::make_unique<MyException>("inner");
  auto middle = std::make_unique<MyException>("middle", *inner);
  const MyException outer("outer", *middle);
  middle.reset();
  inner.reset();
  const struct {
    MyException failure;
    std::u16string xml;
  } cases[] = {
      {MyException("Can't open file /a/DICOMDIR"),
       u"<exception Message=\"Can't open file /a/DICOMDIR\"></exception>"},
      {MyException(""), u"<exception Message=\"\"></exception>"},
      {outer,
       u"<exception Message=\"outer\"><exception Message=\"middle\">"
       u"<exception Message=\"inner\"></exception></exception></exception>"},
      {MyException("say \"hi\" <b> & 'x'\r\n"),
       u"<exception Message=\"say \"hi\" <b> & 'x'\r\n\"></exception>"},
      {MyException("Gr\xC3\xB6\xC3\x9F \xE2\x82\xAC"),
       u"<exception Message=\"Gr\u00F6\u00DF \u20AC\"></exception>"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.failure.ToXml(), c.xml) << c.failure.what();
}

}  // namespace
}  // namespace halvorine
