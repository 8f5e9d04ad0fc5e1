#ifndef HALVORINE_SERVICE_DICOMDIRPATIENT_H
#define HALVORINE_SERVICE_DICOMDIRPATIENT_H

#include <halvorine/dicomdir.h>

#include "reading/RecordFields.h"
#include "service/ComObject.h"
#include "service/RecordProperties.h"

namespace halvorine {

// A patient record: texts and the owning copy of its studies array.
class DicomDirPatient final : public ComObject<IDicomDirPatient, IID_IDicomDirPatient> {
 public:
  DicomDirPatient() = default;

  HALVORINE_TEXT_PROPERTY(PatientID, strPatID, patientID_)
  HALVORINE_TEXT_PROPERTY(DicomPatName, strDicomPatName, dicomPatName_)
  HALVORINE_TEXT_PROPERTY(PatientSex, strPatSex, patientSex_)
  HALVORINE_ARRAY_PROPERTY(Studies, ppStudies, pStudies, studies_)

  // The object of a loaded record.
  static HRESULT Create(const PatientFields& fields, IDicomDirPatient** object) {
    const std::array<LoadedText<DicomDirPatient>, 2> texts{{
        {&DicomDirPatient::dicomPatName_, fields.patientName},
        {&DicomDirPatient::patientID_, fields.patientID},
    }};
    return CreateLoadedObject<DicomDirPatient>(object, texts,
                                               [](DicomDirPatient&) { return true; });
  }

 private:
  // Members go in reverse order: the array, and with it the children, before the texts.
  TextField dicomPatName_;
  TextField patientID_;
  TextField patientSex_;
  SafeArrayPtr studies_;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRPATIENT_H
