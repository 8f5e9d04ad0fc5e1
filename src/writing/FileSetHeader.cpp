#include "writing/FileSetHeader.h"

#include <cstdint>
#include <memory>
#include <utility>

#include "engine/elements/DicomData.h"
#include "engine/elements/VRBinary.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequence.h"
#include "support/MyException.h"
#include "support/Utilities.h"
#include "writing/WritingCommon.h"

namespace halvorine {
namespace {

using DicomEngine::DicomData;

constexpr char kExplicitLittleEndianUid[] = "1.2.840.10008.1.2.1";

// The 16-bit number 2, little-endian.
std::unique_ptr<DicomEngine::VR> MetaInformationVersion() {
  auto version = std::make_unique<std::uint8_t[]>(2);
  version[0] = 0x02;
  version[1] = 0x00;
  return std::make_unique<DicomEngine::VRBinary>("OB", 0x0002, 0x0001, 2, std::move(version));
}

std::string ReadAeTitle(const SettingReader& getSetting) {
  try {
    return getSetting("AeTitle");
  } catch (const MyException& failure) {
    throw MyException(FormatBounded(kMessageBufferSize, "%s File=%s, Line=%d",
                                    "Failed to read setting.", kWriterUnit, __LINE__),
                      failure);
  }
}

}  // namespace

void BuildFileSetHeader(DicomEngine::FileWriter& writer, DicomEngine::OffsetMap& headerMap,
                        const SettingReader& getSetting) {
  DicomData header(true);
  header.Insert(MetaInformationVersion());
  header.Insert(MakeText("UI", 0x0002, 0x0002, "1.2.840.10008.1.3.10"));
  header.Insert(MakeText("UI", 0x0002, 0x0003, GenerateUid()));
  header.Insert(MakeText("UI", 0x0002, 0x0010, kExplicitLittleEndianUid));
  header.Insert(MakeText("UI", 0x0002, 0x0012, "KORVANEL PACS"));
  header.Insert(MakeText("SH", 0x0002, 0x0013, "4.0"));
  header.Insert(MakeText("AE", 0x0002, 0x0016, ReadAeTitle(getSetting)));
  header.Insert(MakeText("CS", 0x0004, 0x1130, ""));
  header.Insert(std::make_unique<DicomEngine::UnsignedIntegerVR>("UL", 0x0004, 0x1200, 4, 0u));
  header.Insert(std::make_unique<DicomEngine::UnsignedIntegerVR>("UL", 0x0004, 0x1202, 4, 0u));
  header.Insert(
      std::make_unique<DicomEngine::UnsignedShortVR>("US", 0x0004, 0x1212, 2, std::uint16_t{0}));
  header.Insert(std::make_unique<DicomEngine::VRSequence>("SQ", 0x0004, 0x1220, 0));
  writer.WriteDataSet(header, &headerMap, DicomEngine::kExplicitLittleEndian,
                      kExplicitLittleEndianUid);
}

}  // namespace halvorine
