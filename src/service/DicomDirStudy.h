#ifndef HALVORINE_SERVICE_DICOMDIRSTUDY_H
#define HALVORINE_SERVICE_DICOMDIRSTUDY_H

#include <halvorine/dicomdir.h>

#include "reading/RecordFields.h"
#include "service/ComObject.h"
#include "service/RecordProperties.h"

namespace halvorine {

// A study record: texts, a date, the owning copy of its series array and a bare back link.
class DicomDirStudy final : public ComObject<IDicomDirStudy, IID_IDicomDirStudy> {
 public:
  DicomDirStudy() = default;

  HALVORINE_TEXT_PROPERTY(StudyInstUID, strStudyInstUID, studyInstUID_)
  HALVORINE_TEXT_PROPERTY(StudyID, strStudyID, studyID_)
  HALVORINE_TEXT_PROPERTY(AccessionNr, strAccNr, accessionNr_)
  HALVORINE_TEXT_PROPERTY(StudyDescription, strStudyDescr, studyDescription_)
  HALVORINE_TEXT_PROPERTY(Institution, strInstitution, institution_)
  HALVORINE_VALUE_PROPERTY(DATE, StudyDate, studyDate, studyDate_)
  HALVORINE_ARRAY_PROPERTY(Series, ppSeries, pSeries, series_)
  HALVORINE_LINK_PROPERTY(IDicomDirPatient, Patient, ppPatient, pPatient, patient_)

  // The object of a loaded record.
  static HRESULT Create(const StudyFields& fields, IDicomDirStudy** object) {
    const std::array<LoadedText<DicomDirStudy>, 5> texts{{
        {&DicomDirStudy::accessionNr_, fields.accessionNr},
        {&DicomDirStudy::studyDescription_, fields.studyDescription},
        {&DicomDirStudy::institution_, fields.institution},
        {&DicomDirStudy::studyInstUID_, fields.studyInstUID},
        {&DicomDirStudy::studyID_, fields.studyID},
    }};
    return CreateLoadedObject<DicomDirStudy>(object, texts, [&](DicomDirStudy& made) {
      made.studyDate_ = fields.studyDate;
      return true;
    });
  }

 private:
  TextField studyInstUID_;
  TextField studyID_;
  DATE studyDate_ = 0.0;
  TextField studyDescription_;
  TextField institution_;
  TextField accessionNr_;
  SafeArrayPtr series_;
  IDicomDirPatient* patient_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRSTUDY_H
