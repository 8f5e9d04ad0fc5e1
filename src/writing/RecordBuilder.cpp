#include "writing/RecordBuilder.h"

#include <algorithm>
#include <cstdint>

#include "engine/elements/VRNumeric.h"
#include "platform/BString.h"
#include "support/TextConversion.h"
#include "support/Utilities.h"
#include "writing/WritingCommon.h"

namespace halvorine {
namespace {

using DicomEngine::VRSequenceItem;
using Record = std::unique_ptr<VRSequenceItem>;

constexpr std::uint16_t kDirectoryGroup = 0x0004;
constexpr std::uint16_t kRecordInUse = 0xFFFF;
constexpr char kDicomIdSeparator = '\\';

// The narrow form of a text attribute; a null string gives an empty one.
template <class Object>
std::string ReadText(Object& object, HRESULT (Object::*getter)(BSTR*), int line) {
  BString text;
  CheckStatus((object.*getter)(text.Receive()), line);
  return ToNarrow(text.get());
}

template <class Object, class Value>
Value ReadValue(Object& object, HRESULT (Object::*getter)(Value*), int line) {
  Value value{};
  CheckStatus((object.*getter)(&value), line);
  return value;
}

Record MakeRecord(const char* type) {
  auto record =
      std::make_unique<VRSequenceItem>("", DicomEngine::kItemGroup, DicomEngine::kItem, 0);
  record->Insert(
      std::make_unique<DicomEngine::UnsignedIntegerVR>("UL", kDirectoryGroup, 0x1400, 4, 0u));
  record->Insert(std::make_unique<DicomEngine::UnsignedShortVR>("US", kDirectoryGroup, 0x1410, 2,
                                                                kRecordInUse));
  record->Insert(
      std::make_unique<DicomEngine::UnsignedIntegerVR>("UL", kDirectoryGroup, 0x1420, 4, 0u));
  record->Insert(MakeText("CS", kDirectoryGroup, 0x1430, type));
  return record;
}

}  // namespace

Record BuildPatientRecord(IDicomDirPatient& patient) {
  Record record = MakeRecord("PATIENT");
  record->Insert(MakeText("PN", 0x0010, 0x0010,
                          ReadText(patient, &IDicomDirPatient::GetDicomPatName, __LINE__)));
  record->Insert(
      MakeText("LO", 0x0010, 0x0020, ReadText(patient, &IDicomDirPatient::GetPatientID, __LINE__)));
  record->Insert(MakeText("CS", 0x0010, 0x0040,
                          ReadText(patient, &IDicomDirPatient::GetPatientSex, __LINE__)));
  return record;
}

Record BuildStudyRecord(IDicomDirStudy& study) {
  Record record = MakeRecord("STUDY");
  const DATE date = ReadValue(study, &IDicomDirStudy::GetStudyDate, __LINE__);
  if (const auto dicomDate = OleDateToDicom(date)) {
    record->Insert(MakeText("DA", 0x0008, 0x0020, dicomDate->date));
    record->Insert(MakeText("TM", 0x0008, 0x0030, dicomDate->time));
  }
  record->Insert(
      MakeText("SH", 0x0008, 0x0050, ReadText(study, &IDicomDirStudy::GetAccessionNr, __LINE__)));
  record->Insert(
      MakeText("LO", 0x0008, 0x0080, ReadText(study, &IDicomDirStudy::GetInstitution, __LINE__)));
  record->Insert(MakeText("LO", 0x0008, 0x1030,
                          ReadText(study, &IDicomDirStudy::GetStudyDescription, __LINE__)));
  record->Insert(
      MakeText("UI", 0x0020, 0x000D, ReadText(study, &IDicomDirStudy::GetStudyInstUID, __LINE__)));
  record->Insert(
      MakeText("SH", 0x0020, 0x0010, ReadText(study, &IDicomDirStudy::GetStudyID, __LINE__)));
  return record;
}

Record BuildSeriesRecord(IDicomDirSeries& series) {
  Record record = MakeRecord("SERIES");
  record->Insert(
      MakeText("CS", 0x0008, 0x0060, ReadText(series, &IDicomDirSeries::GetModality, __LINE__)));
  record->Insert(MakeText("UI", 0x0020, 0x000E,
                          ReadText(series, &IDicomDirSeries::GetSeriesInstUID, __LINE__)));
  const SHORT number = ReadValue(series, &IDicomDirSeries::GetSeriesNumber, __LINE__);
  record->Insert(MakeText("IS", 0x0020, 0x0011, std::to_string(number)));
  return record;
}

Record BuildImageRecord(IDicomDirImage& image, const std::string& targetPath,
                        const std::string& outputFolder) {
  Record record = MakeRecord("IMAGE");
  record->Insert(
      MakeText("UI", kDirectoryGroup, 0x1500, MakeReferencedFileId(targetPath, outputFolder)));
  record->Insert(MakeText("UI", kDirectoryGroup, 0x1510,
                          ReadText(image, &IDicomDirImage::GetSOPClassUID, __LINE__)));
  record->Insert(MakeText("UI", kDirectoryGroup, 0x1511,
                          ReadText(image, &IDicomDirImage::GetSOPInstanceUID, __LINE__)));
  record->Insert(MakeText("UI", kDirectoryGroup, 0x1512,
                          ReadText(image, &IDicomDirImage::GetTransferSyntaxUID, __LINE__)));
  // The low 32 bits, taken as signed; a number beyond nine characters is written whole.
  const LONGLONG number = ReadValue(image, &IDicomDirImage::GetInstanceNumber, __LINE__);
  record->Insert(
      MakeText("IS", 0x0020, 0x0013,
               std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(number)))));
  return record;
}

std::string MakeReferencedFileId(const std::string& targetPath, const std::string& outputFolder) {
  std::string fileId = targetPath;
  if (const std::size_t found = targetPath.find(outputFolder); found != std::string::npos) {
    fileId = targetPath.substr(found + outputFolder.size());
    if (!fileId.empty() && fileId.front() == kPathSeparator) fileId.erase(0, 1);
  }
  std::replace(fileId.begin(), fileId.end(), kPathSeparator, kDicomIdSeparator);
  return fileId;
}

}  // namespace halvorine
