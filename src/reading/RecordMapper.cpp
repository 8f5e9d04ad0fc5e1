#include "reading/RecordMapper.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <utility>

#include "support/MyException.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"
#include "support/Utilities.h"

namespace halvorine {
namespace {

// Failures of a load name the service's unit, as the host sees them.
constexpr char kUnit[] = "DicomDirImpl";

constexpr std::array<std::string_view, 4> kTypeNames = {"PATIENT", "STUDY", "SERIES", "IMAGE"};

std::string_view TypeName(RecordLevel level) {
  return level == RecordLevel::kOther ? "other" : kTypeNames[static_cast<std::size_t>(level)];
}

RecordLevel LevelOf(std::string_view type) {
  for (std::size_t i = 0; i < kTypeNames.size(); ++i) {
    if (type == kTypeNames[i]) return static_cast<RecordLevel>(i);
  }
  return RecordLevel::kOther;
}

void Check(HRESULT status, int line) {
  if (FAILED(status)) RaiseStatus(status, kUnit, line);
}

// The text of a string element, or nothing when it is missing, no text or empty. Its data() ends
// with a NUL.
std::optional<std::string_view> ReadText(const RecordValues& record, std::uint16_t group,
                                         std::uint16_t element) {
  const std::optional<std::string_view> text = record.Text(group, element);
  if (!text || text->empty()) return std::nullopt;
  return text;
}

// The text's atoi, in the type of the field that it fills.
template <class Number>
std::optional<Number> ReadNumber(const RecordValues& record, std::uint16_t group,
                                 std::uint16_t element) {
  const std::optional<std::string_view> text = ReadText(record, group, element);
  if (!text) return std::nullopt;
  return static_cast<Number>(std::atoi(text->data()));
}

double ReadStudyDate(const RecordValues& record) {
  const std::optional<std::string_view> date = ReadText(record, 0x0008, 0x0020);
  const std::optional<std::string_view> time = ReadText(record, 0x0008, 0x0030);
  return DicomToOleDate(date ? date->data() : nullptr, time ? time->data() : nullptr);
}

template <class Fields, class Interface>
ComPtr<IUnknown> Create(HRESULT (*creator)(const Fields&, Interface**), const Fields& fields) {
  ComPtr<Interface> object;
  Check(creator(fields, object.Receive()), __LINE__);
  return ComPtr<IUnknown>::Adopt(object.Detach());
}

// The entries' objects in the interface that their level gives them.
template <class Child>
Child* As(const MappedRecord& entry) {
  return static_cast<Child*>(entry.object.get());
}

}  // namespace

RecordMapper::RecordMapper(const RecordCreators& creators, std::u16string_view directoryName)
    : creators_(creators),
      folderPath_(ToNarrow(directoryName) + '/'),
      paths_(folderPath_.substr(0, folderPath_.size() - 1)) {}

MappedRecord RecordMapper::MapRecord(const RecordValues& record, std::uint32_t offset,
                                     ChildList& children) {
  std::string type = ReadRecordType(record);
  TrimSpaces(type);
  MappedRecord mapped{ComPtr<IUnknown>(), LevelOf(type), offset};
  switch (mapped.level) {
    case RecordLevel::kPatient:
      mapped.object = MakePatient(record);
      break;
    case RecordLevel::kStudy:
      mapped.object = MakeStudy(record);
      break;
    case RecordLevel::kSeries:
      mapped.object = MakeSeries(record);
      break;
    case RecordLevel::kImage:
      // Records below an image are walked and made, then go nowhere.
      mapped.object = MakeImage(record, offset);
      return mapped;
    case RecordLevel::kOther:
      return mapped;
  }
  LinkChildren(mapped.object.get(), mapped.level, offset, children);
  return mapped;
}

void RecordMapper::PassOverWrongLevels(ChildList& children, RecordLevel expected,
                                       std::uint32_t parentOffset) {
  const std::string parent = parentOffset == 0
                                 ? std::string("the root")
                                 : "the record at offset " + std::to_string(parentOffset);
  std::erase_if(children, [&](const MappedRecord& child) {
    if (child.level == expected || child.level == RecordLevel::kOther) return false;
    const std::string type(TypeName(child.level));
    Trace(FormatBounded(kMessageBufferSize,
                        "Passed over the %s record at offset %u: only %s records belong below %s.",
                        type.c_str(), child.offset, std::string(TypeName(expected)).c_str(),
                        parent.c_str()),
          1);
    return true;
  });
}

SafeArrayPtr RecordMapper::MakeObjectArray(ChildList& childList) {
  if (childList.empty()) return SafeArrayPtr();
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(childList.size())));
  if (array.get() == nullptr) Raise(kUnit, __LINE__, "Failed to create DICOMDIR array.");
  for (std::size_t i = 0; i < childList.size(); ++i) {
    LONG index = static_cast<LONG>(i);
    if (childList[i].object) {
      Check(SafeArrayPutElement(array.get(), &index, childList[i].object.get()), __LINE__);
    }
    childList[i].object = ComPtr<IUnknown>();
  }
  return array;
}

std::string RecordMapper::ReadRecordType(const RecordValues& record) {
  const std::optional<std::string_view> type = record.Text(0x0004, 0x1430);
  if (!type) Raise(kUnit, __LINE__, "The DICOMDIR record type is missing.");
  return std::string(*type);
}

ComPtr<IUnknown> RecordMapper::MakePatient(const RecordValues& record) {
  return Create(creators_.patient,
                PatientFields{ReadText(record, 0x0010, 0x0010), ReadText(record, 0x0010, 0x0020)});
}

// The date's status is not looked at: 0.0 stands for no date.
ComPtr<IUnknown> RecordMapper::MakeStudy(const RecordValues& record) {
  return Create(creators_.study,
                StudyFields{ReadStudyDate(record), ReadText(record, 0x0008, 0x0050),
                            ReadText(record, 0x0008, 0x1030), ReadText(record, 0x0008, 0x0080),
                            ReadText(record, 0x0020, 0x000D), ReadText(record, 0x0020, 0x0010)});
}

ComPtr<IUnknown> RecordMapper::MakeSeries(const RecordValues& record) {
  return Create(creators_.series,
                SeriesFields{ReadText(record, 0x0008, 0x0060), ReadText(record, 0x0020, 0x000E),
                             ReadNumber<SHORT>(record, 0x0020, 0x0011)});
}

ComPtr<IUnknown> RecordMapper::MakeImage(const RecordValues& record, std::uint32_t offset) {
  return Create(
      creators_.image,
      ImageFields{ImagePath(record, offset), ReadText(record, 0x0004, 0x1510),
                  ReadText(record, 0x0004, 0x1511), ReadNumber<LONGLONG>(record, 0x0020, 0x0013)});
}

// A missing File ID leaves the folder and a separator.
std::string_view RecordMapper::ImagePath(const RecordValues& record, std::uint32_t offset) {
  const std::optional<std::string_view> fileId = ReadText(record, 0x0004, 0x1500);
  if (!fileId) return folderPath_;
  if (!ImagePathResolver::SplitFileId(*fileId, components_)) {
    Raise(kUnit, __LINE__,
          "The Referenced File ID \"%s\" of the DICOMDIR record at offset %u leads outside the "
          "folder.",
          std::string(*fileId).c_str(), offset);
  }
  return paths_.Resolve(components_);
}

void RecordMapper::LinkChildren(IUnknown* parent, RecordLevel level, std::uint32_t offset,
                                ChildList& children) {
  const auto childLevel = static_cast<RecordLevel>(static_cast<int>(level) + 1);
  PassOverWrongLevels(children, childLevel, offset);
  for (const MappedRecord& child : children) {
    if (!child.object) continue;
    if (level == RecordLevel::kPatient) {
      Check(As<IDicomDirStudy>(child)->SetPatient(static_cast<IDicomDirPatient*>(parent)),
            __LINE__);
    } else if (level == RecordLevel::kStudy) {
      Check(As<IDicomDirSeries>(child)->SetStudy(static_cast<IDicomDirStudy*>(parent)), __LINE__);
    } else {
      Check(As<IDicomDirImage>(child)->SetSeries(static_cast<IDicomDirSeries*>(parent)), __LINE__);
    }
  }
  SafeArrayPtr array = MakeObjectArray(children);
  if (array.get() == nullptr) return;
  if (level == RecordLevel::kPatient) {
    Check(static_cast<IDicomDirPatient*>(parent)->SetStudies(array.get()), __LINE__);
  } else if (level == RecordLevel::kStudy) {
    Check(static_cast<IDicomDirStudy*>(parent)->SetSeries(array.get()), __LINE__);
  } else {
    Check(static_cast<IDicomDirSeries*>(parent)->SetImages(array.get()), __LINE__);
  }
}

}  // namespace halvorine
