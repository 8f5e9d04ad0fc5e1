#ifndef HALVORINE_SERVICE_DICOMDIRSERIES_H
#define HALVORINE_SERVICE_DICOMDIRSERIES_H

#include <halvorine/dicomdir.h>

#include "reading/RecordFields.h"
#include "service/ComObject.h"
#include "service/RecordProperties.h"

namespace halvorine {

// A series record: texts, a number, a date, the owning copy of its images array and a bare back
// link. SetCalibration stores nothing.
class DicomDirSeries final : public ComObject<IDicomDirSeries, IID_IDicomDirSeries> {
 public:
  DicomDirSeries() = default;

  HALVORINE_TEXT_PROPERTY(SeriesInstUID, strSeriesInstUID, seriesInstUID_)
  HALVORINE_VALUE_PROPERTY(SHORT, SeriesNumber, nSeriesNr, seriesNumber_)
  HALVORINE_TEXT_PROPERTY(Modality, strModality, modality_)
  HALVORINE_VALUE_PROPERTY(DATE, SeriesDateTime, seriesDateTime, seriesDateTime_)
  HALVORINE_TEXT_PROPERTY(SeriesDescription, strSeriesDescr, seriesDescription_)
  HRESULT SetCalibration(double dPixelSpacingX, double dPixelSpacingY) override;
  HALVORINE_ARRAY_PROPERTY(Images, ppImages, pImages, images_)
  HALVORINE_LINK_PROPERTY(IDicomDirStudy, Study, ppStudy, pStudy, study_)

  // The object of a loaded record.
  static HRESULT Create(const SeriesFields& fields, IDicomDirSeries** object) {
    const std::array<LoadedText<DicomDirSeries>, 2> texts{{
        {&DicomDirSeries::modality_, fields.modality},
        {&DicomDirSeries::seriesInstUID_, fields.seriesInstUID},
    }};
    return CreateLoadedObject<DicomDirSeries>(object, texts, [&](DicomDirSeries& made) {
      made.seriesNumber_ = fields.seriesNumber.value_or(made.seriesNumber_);
      return true;
    });
  }

 private:
  TextField seriesInstUID_;
  TextField modality_;
  TextField seriesDescription_;
  DATE seriesDateTime_ = 0.0;
  SHORT seriesNumber_ = 0;
  SafeArrayPtr images_;
  IDicomDirStudy* study_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRSERIES_H
