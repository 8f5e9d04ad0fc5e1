// Elements encoded by hand, apart from the engine, little endian: the expected bytes of the
// writers' tests and the input of the parser's and the reader's. Standard library only, since the
// load benchmark builds the reader's variant files with it.
#ifndef HALVORINE_TESTS_ENGINE_ENCODING_ELEMENTBYTES_H
#define HALVORINE_TESTS_ENGINE_ENCODING_ELEMENTBYTES_H

#include <cstdint>
#include <string>

namespace halvorine {

inline std::string LittleEndian(std::uint32_t value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

// Tag, VR and length. Implicit VR and group FFFE have no VR field; explicit OB, OW, SQ, UN and UT
// the long length form.
inline std::string ElementHeader(std::uint16_t group, std::uint16_t element, const std::string& vr,
                                 std::uint32_t length, bool implicit = false) {
  const std::string tag = LittleEndian(group, 2) + LittleEndian(element, 2);
  if (implicit || group == 0xFFFE) return tag + LittleEndian(length, 4);
  const bool longForm = vr == "OB" || vr == "OW" || vr == "SQ" || vr == "UN" || vr == "UT";
  return tag + vr +
         (longForm ? std::string(2, '\0') + LittleEndian(length, 4) : LittleEndian(length, 2));
}

// The value padded to even length, UI with a NUL and anything else with a blank.
inline std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& vr,
                           std::string value, bool implicit = false) {
  if (value.size() % 2 != 0) value += vr == "UI" ? '\0' : ' ';
  return ElementHeader(group, element, vr, static_cast<std::uint32_t>(value.size()), implicit) +
         value;
}

}  // namespace halvorine

#endif  // HALVORINE_TESTS_ENGINE_ENCODING_ELEMENTBYTES_H
