#include "engine/dictionary/TransferSyntax.h"

#include <gtest/gtest.h>

#include <string>

namespace DicomEngine {
namespace {

const TransferSyntax& Table() { return TransferSyntax::GetInstance(); }

TEST(TransferSyntaxTest, KnowsTheTwentyFourSyntaxes) {
  EXPECT_EQ(*Table().Find("1.2.840.10008.1.2"), SyntaxRecord(1, 1));
  EXPECT_EQ(*Table().Find("1.2.840.10008.1.2.1"), SyntaxRecord(2, 1));
  EXPECT_EQ(*Table().Find("1.2.840.10008.1.2.2"), SyntaxRecord(2, 2));
  // The compressed syntaxes say only how the elements around the pixel data are encoded.
  for (const char* suffix :
       {"5",    "4.50", "4.51", "4.52", "4.53", "4.54", "4.55", "4.56", "4.57", "4.58", "4.59",
        "4.60", "4.61", "4.62", "4.63", "4.64", "4.65", "4.66", "4.70", "4.90", "4.91"}) {
    const SyntaxRecord* record = Table().Find(std::string("1.2.840.10008.1.2.") + suffix);
    ASSERT_NE(record, nullptr) << suffix;
    EXPECT_EQ(*record, kExplicitLittleEndian) << suffix;
  }
}

TEST(TransferSyntaxTest, FindTrimsBlanksAloneAndMatchesWholeKeys) {
  const struct {
    std::string uid;
    const SyntaxRecord* record;
  } cases[] = {
      {"", nullptr},
      {"   ", nullptr},
      {"1.2.840.10008.1", nullptr},
      {"1.2.840.10008.1.2.", nullptr},
      {"1.2.840.10008.1.2.4.80", nullptr},
      {"1.2.840.10008.1.2\t", nullptr},
      {std::string("1.2.840.10008.1.2\0", 18), nullptr},
      {"1.2.840.10008.1.2 ", &kImplicitLittleEndian},
      {"  1.2.840.10008.1.2.1  ", &kExplicitLittleEndian},
  };
  for (const auto& test : cases) {
    const SyntaxRecord* record = Table().Find(test.uid);
    EXPECT_EQ(record == nullptr, test.record == nullptr) << '"' << test.uid << '"';
    if (record != nullptr && test.record != nullptr) {
      EXPECT_EQ(*record, *test.record) << test.uid;
    }
  }
}

TEST(TransferSyntaxTest, GetUidWorksFromTheFieldsAlone) {
  const struct {
    SyntaxRecord record;
    const char* uid;
  } cases[] = {
      {SyntaxRecord(), "1.2.840.10008.1.2"},
      {SyntaxRecord(1, 1), "1.2.840.10008.1.2"},
      {SyntaxRecord(2, 1), "1.2.840.10008.1.2.1"},
      {SyntaxRecord(2, 0), "1.2.840.10008.1.2.1"},
      {SyntaxRecord(2, 2), "1.2.840.10008.1.2.2"},
      {SyntaxRecord(1, 2), "1.2.840.10008.1.2.2"},
      {*Table().Find("1.2.840.10008.1.2.4.70"), "1.2.840.10008.1.2.1"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(TransferSyntax::GetUid(test.record), test.uid)
        << test.record.vrForm << "/" << test.record.byteOrder;
  }
}

}  // namespace
}  // namespace DicomEngine
