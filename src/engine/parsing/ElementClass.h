// Which element class the parser makes for a VR code, and which codes have the long length field
// in an explicit encoding. Shared by the parser and by PlainItem, which must read an item exactly
// as the parser would.
#ifndef HALVORINE_ENGINE_PARSING_ELEMENTCLASS_H
#define HALVORINE_ENGINE_PARSING_ELEMENTCLASS_H

#include <cstdint>
#include <string_view>

namespace DicomEngine {

enum class ElementClass : std::uint8_t {
  kNone,  // a code without a class: the parser makes no element
  kBinary,  // VRBinary, or a sequence of fragments for an undefined length
  kSequence,
  kString,
  kUniqueIdentifier,
  kAttributeTag,
  kFloat,
  kDouble,
  kUnsignedLong,
  kUnsignedShort,
  kSignedShort,
  kSignedLong,
};

// The two letters as one number, so that ClassOfCode is a switch; 0 for a text of any other size,
// which matches no code.
constexpr std::uint16_t CodeKey(std::string_view vrCode) {
  if (vrCode.size() != 2) return 0;
  return static_cast<std::uint16_t>(static_cast<unsigned char>(vrCode[0]) << 8 |
                                    static_cast<unsigned char>(vrCode[1]));
}

constexpr ElementClass ClassOfCode(std::string_view vrCode) {
  switch (CodeKey(vrCode)) {
    case CodeKey("UN"):
    case CodeKey("OT"):
    case CodeKey("OB"):
    case CodeKey("OW"):
      return ElementClass::kBinary;
    case CodeKey("SQ"):
      return ElementClass::kSequence;
    case CodeKey("DA"):
    case CodeKey("TM"):
    case CodeKey("DT"):
    case CodeKey("AE"):
    case CodeKey("PN"):
    case CodeKey("SH"):
    case CodeKey("ST"):
    case CodeKey("LO"):
    case CodeKey("LT"):
    case CodeKey("CS"):
    case CodeKey("AS"):
    case CodeKey("IS"):
    case CodeKey("DS"):
    case CodeKey("UT"):
      return ElementClass::kString;
    case CodeKey("UI"):
      return ElementClass::kUniqueIdentifier;
    case CodeKey("AT"):
      return ElementClass::kAttributeTag;
    case CodeKey("FL"):
      return ElementClass::kFloat;
    case CodeKey("FD"):
      return ElementClass::kDouble;
    case CodeKey("UL"):
      return ElementClass::kUnsignedLong;
    case CodeKey("US"):
      return ElementClass::kUnsignedShort;
    case CodeKey("SS"):
      return ElementClass::kSignedShort;
    case CodeKey("SL"):
      return ElementClass::kSignedLong;
    default:
      return ElementClass::kNone;
  }
}

// The codes whose explicit form has two reserved bytes and a 32-bit length.
constexpr bool HasLongLength(std::string_view vrCode) {
  return vrCode == "OB" || vrCode == "OW" || vrCode == "SQ" || vrCode == "UN" || vrCode == "UT";
}

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_ELEMENTCLASS_H
