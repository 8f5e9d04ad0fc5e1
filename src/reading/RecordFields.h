#ifndef HALVORINE_READING_RECORDFIELDS_H
#define HALVORINE_READING_RECORDFIELDS_H

#include <halvorine/dicomdir.h>

#include <optional>
#include <string_view>

namespace halvorine {

// What a load fills in the object of each level, as the record gives it: a text in UTF-8, of
// which the object keeps what stands before a NUL, absent when its element is missing or empty;
// a number only when its element is there.
struct PatientFields {
  std::optional<std::string_view> patientName;
  std::optional<std::string_view> patientID;
};
struct StudyFields {
  DATE studyDate = 0.0;
  std::optional<std::string_view> accessionNr;
  std::optional<std::string_view> studyDescription;
  std::optional<std::string_view> institution;
  std::optional<std::string_view> studyInstUID;
  std::optional<std::string_view> studyID;
};
struct SeriesFields {
  std::optional<std::string_view> modality;
  std::optional<std::string_view> seriesInstUID;
  std::optional<SHORT> seriesNumber;
};
struct ImageFields {
  std::string_view imageFilename;
  std::optional<std::string_view> sopClassUID;
  std::optional<std::string_view> sopInstanceUID;
  std::optional<LONGLONG> instanceNumber;
};

// How the reading layer makes record objects without linking to the service above it: each
// creator makes a new object of its level holding the fields, with one reference for *object.
// Each text is stored as the interface's setter would store its UTF-16 form.
struct RecordCreators {
  HRESULT (*patient)(const PatientFields& fields, IDicomDirPatient** object);
  HRESULT (*study)(const StudyFields& fields, IDicomDirStudy** object);
  HRESULT (*series)(const SeriesFields& fields, IDicomDirSeries** object);
  HRESULT (*image)(const ImageFields& fields, IDicomDirImage** object);
};

}  // namespace halvorine

#endif  // HALVORINE_READING_RECORDFIELDS_H
