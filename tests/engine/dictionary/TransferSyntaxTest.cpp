#include "engine/dictionary/TransferSyntax.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace DicomEngine {
namespace {

const TransferSyntax& Table() { return TransferSyntax::GetInstance(); }

// The record found, or (9, 9) for none.
SyntaxRecord Found(const std::string& uid) {
  const SyntaxRecord* record = Table().Find(uid);
  return record == nullptr ? SyntaxRecord(9, 9) : *record;
}

// Blanks alone are trimmed, and a key matches whole. The compressed syntaxes say only how the
// elements around the pixel data are encoded.
TEST(TransferSyntaxTest, FindKnowsTheTwentyFourSyntaxes) {
  const SyntaxRecord none(9, 9);
  const std::pair<std::string, SyntaxRecord> cases[] = {
      {"1.2.840.10008.1.2", kImplicitLittleEndian},
      {"1.2.840.10008.1.2.1", kExplicitLittleEndian},
      {"1.2.840.10008.1.2.2", SyntaxRecord(2, 2)},
      {"1.2.840.10008.1.2 ", kImplicitLittleEndian},
      {"  1.2.840.10008.1.2.1  ", kExplicitLittleEndian},
      {"", none},
      {"   ", none},
      {"1.2.840.10008.1", none},
      {"1.2.840.10008.1.2.", none},
      {"1.2.840.10008.1.2.4.80", none},
      {"1.2.840.10008.1.2\t", none},
      {std::string("1.2.840.10008.1.2\0", 18), none},
  };
  for (const auto& [uid, record] : cases) EXPECT_EQ(Found(uid), record) << '"' << uid << '"';
  for (const char* suffix :
       {"5",    "4.50", "4.51", "4.52", "4.53", "4.54", "4.55", "4.56", "4.57", "4.58", "4.59",
        "4.60", "4.61", "4.62", "4.63", "4.64", "4.65", "4.66", "4.70", "4.90", "4.91"}) {
    EXPECT_EQ(Found(std::string("1.2.840.10008.1.2.") + suffix), kExplicitLittleEndian) << suffix;
  }
}

TEST(TransferSyntaxTest, GetUidWorksFromTheFieldsAlone) {
  const std::pair<SyntaxRecord, const char*> cases[] = {
      {SyntaxRecord(), "1.2.840.10008.1.2"},       {SyntaxRecord(1, 1), "1.2.840.10008.1.2"},
      {SyntaxRecord(2, 1), "1.2.840.10008.1.2.1"}, {SyntaxRecord(2, 0), "1.2.840.10008.1.2.1"},
      {SyntaxRecord(2, 2), "1.2.840.10008.1.2.2"}, {SyntaxRecord(1, 2), "1.2.840.10008.1.2.2"},
  };
  for (const auto& [record, uid] : cases) {
    EXPECT_EQ(TransferSyntax::GetUid(record), uid) << record.vrForm << "/" << record.byteOrder;
  }
}

}  // namespace
}  // namespace DicomEngine
