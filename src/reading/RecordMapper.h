// Turns one directory record into a record object: reads the few attributes that its level
// supplies, fills the object, and links it to the objects of its lower-level records.
#ifndef HALVORINE_READING_RECORDMAPPER_H
#define HALVORINE_READING_RECORDMAPPER_H

#include <halvorine/dicomdir.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ComPtr.h"
#include "platform/SafeArrayPtr.h"
#include "reading/ImagePathResolver.h"
#include "reading/RecordFields.h"
#include "reading/RecordValues.h"

namespace halvorine {

// kOther for every record type but the four: such a record gives no object.
enum class RecordLevel { kPatient, kStudy, kSeries, kImage, kOther };

// One entry of a chain: the object holds the one reference of the entry (null for kOther), in
// the object's own interface; offset is the record's key in the file.
struct MappedRecord {
  ComPtr<IUnknown> object;
  RecordLevel level = RecordLevel::kOther;
  std::uint32_t offset = 0;
};
using ChildList = std::vector<MappedRecord>;

class RecordMapper {
 public:
  // directoryName roots every image path of the load.
  RecordMapper(const RecordCreators& creators, std::u16string_view directoryName);

  // The object of record, filled and linked to children, which may lose their entries. Raises
  // for a missing record type, a failing platform call and a File ID that leads outside.
  MappedRecord MapRecord(const RecordValues& record, std::uint32_t offset, ChildList& children);
  // Drops the entries that aren't of level expected (or kOther) from children, with a trace line
  // at level 1 each, so that the rest of the disc still loads. A parentOffset of 0 is the root.
  static void PassOverWrongLevels(ChildList& children, RecordLevel expected,
                                  std::uint32_t parentOffset);
  // Moves each entry's reference into a new array, a null slot for a null entry; null for an
  // empty list.
  static SafeArrayPtr MakeObjectArray(ChildList& childList);

  // The value of (0004,1430), untrimmed.
  static std::string ReadRecordType(const RecordValues& record);

 private:
  ComPtr<IUnknown> MakePatient(const RecordValues& record);
  ComPtr<IUnknown> MakeStudy(const RecordValues& record);
  ComPtr<IUnknown> MakeSeries(const RecordValues& record);
  ComPtr<IUnknown> MakeImage(const RecordValues& record, std::uint32_t offset);
  // Valid until the next call.
  std::string_view ImagePath(const RecordValues& record, std::uint32_t offset);
  void LinkChildren(IUnknown* parent, RecordLevel level, std::uint32_t offset, ChildList& children);

  RecordCreators creators_;
  std::string folderPath_;  // the folder and a separator: the path of an image without a File ID
  ImagePathResolver paths_;
  std::vector<std::string_view> components_;  // of the File ID being resolved
};

}  // namespace halvorine

#endif  // HALVORINE_READING_RECORDMAPPER_H
