#include "service/DicomDirSeries.h"

namespace halvorine {

HRESULT DicomDirSeries::SetCalibration(double /*dPixelSpacingX*/, double /*dPixelSpacingY*/) {
  return E_NOTIMPL;
}

}  // namespace halvorine
