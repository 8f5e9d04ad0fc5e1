#include "service/DicomDirImage.h"

namespace halvorine {

HRESULT DicomDirImage::IsTagged(void* /*hViewPort*/, VARIANT_BOOL* pRetVal) {
  if (pRetVal == nullptr) return E_POINTER;
  *pRetVal = VARIANT_FALSE;
  return S_OK;
}

}  // namespace halvorine
