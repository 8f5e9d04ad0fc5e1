// The creators through which a load makes the record objects of this component.
#ifndef HALVORINE_SERVICE_LOADEDRECORDS_H
#define HALVORINE_SERVICE_LOADEDRECORDS_H

#include "reading/RecordFields.h"
#include "service/DicomDirImage.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"

namespace halvorine {

inline constexpr RecordCreators kRecordCreators = {&DicomDirPatient::Create, &DicomDirStudy::Create,
                                                   &DicomDirSeries::Create, &DicomDirImage::Create};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_LOADEDRECORDS_H
