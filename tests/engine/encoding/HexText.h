// Bytes as text, "04 00 00 12", so that a failing comparison shows the whole stream.
#ifndef HALVORINE_TESTS_ENGINE_ENCODING_HEXTEXT_H
#define HALVORINE_TESTS_ENGINE_ENCODING_HEXTEXT_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "engine/encoding/BufferWriter.h"

namespace DicomEngine {

inline std::string HexOf(const std::uint8_t* data, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, i == 0 ? "%02X" : " %02X", data[i]);
    text += byte;
  }
  return text;
}

inline std::string HexOf(std::string_view bytes) {
  return HexOf(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

// The whole stream: GetCursor() bytes.
inline std::string StreamOf(const BufferWriter& writer) {
  return HexOf(writer.GetBuffer(), writer.GetCursor());
}

}  // namespace DicomEngine

#endif  // HALVORINE_TESTS_ENGINE_ENCODING_HEXTEXT_H
