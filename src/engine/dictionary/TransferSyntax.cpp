#include "engine/dictionary/TransferSyntax.h"

#include "support/ComponentStatic.h"
#include "support/Utilities.h"

namespace DicomEngine {
namespace {

constexpr char kImplicitLittleEndianUid[] = "1.2.840.10008.1.2";
constexpr char kExplicitLittleEndianUid[] = "1.2.840.10008.1.2.1";
constexpr char kExplicitBigEndianUid[] = "1.2.840.10008.1.2.2";

}  // namespace

TransferSyntax::TransferSyntax()
    : records_{
          {kImplicitLittleEndianUid, kImplicitLittleEndian},
          {kExplicitLittleEndianUid, kExplicitLittleEndian},
          {kExplicitBigEndianUid, SyntaxRecord(kExplicitVR, kBigEndian)},
          {"1.2.840.10008.1.2.5", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.50", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.51", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.52", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.53", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.54", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.55", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.56", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.57", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.58", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.59", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.60", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.61", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.62", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.63", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.64", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.65", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.66", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.70", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.90", kExplicitLittleEndian},
          {"1.2.840.10008.1.2.4.91", kExplicitLittleEndian},
      } {}

const TransferSyntax& TransferSyntax::GetInstance() {
  return halvorine::ComponentStatic<TransferSyntax>();
}

const SyntaxRecord* TransferSyntax::Find(std::string_view uid) const {
  if (uid.empty()) return nullptr;
  std::string key(uid);
  halvorine::TrimSpaces(key);
  const auto found = records_.find(key);
  return found == records_.end() ? nullptr : &found->second;
}

std::string TransferSyntax::GetUid(SyntaxRecord record) {
  if (record.byteOrder == kBigEndian) return kExplicitBigEndianUid;
  if (record.vrForm != kExplicitVR) return kImplicitLittleEndianUid;
  return kExplicitLittleEndianUid;
}

}  // namespace DicomEngine
