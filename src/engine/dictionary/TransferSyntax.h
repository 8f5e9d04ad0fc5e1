// The transfer syntax UIDs that the engine knows, and what each says about the encoding of the
// data set's elements: byte order and VR form. Compression is none of its business.
#ifndef HALVORINE_ENGINE_DICTIONARY_TRANSFERSYNTAX_H
#define HALVORINE_ENGINE_DICTIONARY_TRANSFERSYNTAX_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "support/ComponentStatic.h"

namespace DicomEngine {

inline constexpr std::uint32_t kLittleEndian = 1;
inline constexpr std::uint32_t kBigEndian = 2;
inline constexpr std::uint32_t kImplicitVR = 1;
inline constexpr std::uint32_t kExplicitVR = 2;

// A byte order and a VR form; 0 in either field means not set. Copied by value.
struct SyntaxRecord {
  std::uint32_t byteOrder = 0;
  std::uint32_t vrForm = 0;

  constexpr SyntaxRecord() = default;
  // VR form first: SyntaxRecord(kExplicitVR, kLittleEndian).
  constexpr SyntaxRecord(std::uint32_t form, std::uint32_t order)
      : byteOrder(order), vrForm(form) {}

  friend constexpr bool operator==(const SyntaxRecord&, const SyntaxRecord&) = default;
};

inline constexpr SyntaxRecord kImplicitLittleEndian(kImplicitVR, kLittleEndian);
inline constexpr SyntaxRecord kExplicitLittleEndian(kExplicitVR, kLittleEndian);

// Built on the first GetInstance and read-only from then on, for the life of the process.
class TransferSyntax {
 public:
  TransferSyntax(const TransferSyntax&) = delete;
  TransferSyntax& operator=(const TransferSyntax&) = delete;

  static const TransferSyntax& GetInstance();

  // The record of the UID with blanks (and only blanks) trimmed from both ends, or null for an
  // unknown or empty UID. The pointer stays valid as long as the component is loaded.
  const SyntaxRecord* Find(std::string_view uid) const;

  // The uncompressed syntax with the record's byte order and VR form, worked out from the fields
  // alone: a record of a compressed syntax gives Explicit VR Little Endian.
  static std::string GetUid(SyntaxRecord record);

 private:
  friend TransferSyntax& halvorine::ComponentStatic<TransferSyntax>();
  TransferSyntax();

  const std::map<std::string, SyntaxRecord, std::less<>> records_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_DICTIONARY_TRANSFERSYNTAX_H
