#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include "RecordFamilies.h"
#include "ServiceTestSupport.h"

namespace halvorine {
namespace {

using DicomDirStudyTest = ServiceTest;

TEST_F(DicomDirStudyTest, Texts) {
  ExpectTextFamily<IDicomDirStudy>({
      HALVORINE_FIELD(IDicomDirStudy, StudyInstUID),
      HALVORINE_FIELD(IDicomDirStudy, StudyID),
      HALVORINE_FIELD(IDicomDirStudy, AccessionNr),
      HALVORINE_FIELD(IDicomDirStudy, StudyDescription),
      HALVORINE_FIELD(IDicomDirStudy, Institution),
  });
}

TEST_F(DicomDirStudyTest, StudyDate) {
  ExpectValueFamily<IDicomDirStudy, DATE>({HALVORINE_VALUE_FIELD(IDicomDirStudy, StudyDate, 0.0)});
}

TEST_F(DicomDirStudyTest, Series) {
  ExpectArrayFamily<IDicomDirStudy>({&IDicomDirStudy::GetSeries, &IDicomDirStudy::SetSeries});
}

TEST_F(DicomDirStudyTest, Patient) {
  ExpectLinkFamily<IDicomDirStudy, IDicomDirPatient>(
      {&IDicomDirStudy::GetPatient, &IDicomDirStudy::SetPatient});
}

}  // namespace
}  // namespace halvorine
