// One-dimensional arrays of counted IUnknown references. The element type is kept in the four
// bytes in front of the descriptor, as Windows does for FADF_HAVEVARTYPE:
//
//   offset  size  content
//   -8      4     unused, keeps the descriptor aligned for its pointer
//   -4      4     VARTYPE (VT_UNKNOWN), widened to 32 bits
//   0       24    SAFEARRAY descriptor with one SAFEARRAYBOUND
//   pvData        cElements pointers, null for an empty slot
#include <halvorine/com.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

struct ArrayBlock {
  std::uint32_t unused;
  std::uint32_t vartype;
  SAFEARRAY descriptor;
};
static_assert(offsetof(ArrayBlock, descriptor) - offsetof(ArrayBlock, vartype) == 4);

ArrayBlock* BlockOf(SAFEARRAY* psa) {
  return reinterpret_cast<ArrayBlock*>(reinterpret_cast<char*>(psa) -
                                       offsetof(ArrayBlock, descriptor));
}

IUnknown** Slots(SAFEARRAY* psa) { return static_cast<IUnknown**>(psa->pvData); }

// Resolves an index to its slot, or gives the failing status.
HRESULT SlotAt(SAFEARRAY* psa, const LONG* rgIndices, IUnknown*** slot) {
  if (psa == nullptr || rgIndices == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND& bound = psa->rgsabound[0];
  const std::int64_t offset = std::int64_t{*rgIndices} - bound.lLbound;
  if (offset < 0 || offset >= std::int64_t{bound.cElements}) return DISP_E_BADINDEX;
  *slot = Slots(psa) + offset;
  return S_OK;
}

HRESULT CheckDimension(SAFEARRAY* psa, UINT nDim, const LONG* out) {
  if (psa == nullptr || out == nullptr) return E_INVALIDARG;
  if (nDim != 1) return DISP_E_BADINDEX;
  return S_OK;
}

}  // namespace

HALVOCOM_API SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lLbound, ULONG cElements) {
  if (vt != VT_UNKNOWN) return nullptr;
  auto* block = new (std::nothrow) ArrayBlock{};
  if (block == nullptr) return nullptr;
  void* data = std::calloc(cElements == 0 ? 1 : cElements, sizeof(IUnknown*));
  if (data == nullptr) {
    delete block;
    return nullptr;
  }
  block->vartype = vt;
  SAFEARRAY& psa = block->descriptor;
  psa.cDims = 1;
  psa.fFeatures = FADF_HAVEVARTYPE | FADF_UNKNOWN;
  psa.cbElements = sizeof(IUnknown*);
  psa.pvData = data;
  psa.rgsabound[0] = SAFEARRAYBOUND{cElements, lLbound};
  return &psa;
}

HALVOCOM_API HRESULT SafeArrayPutElement(SAFEARRAY* psa, LONG* rgIndices, void* pv) {
  IUnknown** slot = nullptr;
  if (HRESULT hr = SlotAt(psa, rgIndices, &slot); FAILED(hr)) return hr;
  auto* element = static_cast<IUnknown*>(pv);
  if (element != nullptr) element->AddRef();
  IUnknown* former = *slot;
  *slot = element;
  if (former != nullptr) former->Release();
  return S_OK;
}

HALVOCOM_API HRESULT SafeArrayGetElement(SAFEARRAY* psa, LONG* rgIndices, void* pv) {
  if (pv == nullptr) return E_INVALIDARG;
  IUnknown** slot = nullptr;
  if (HRESULT hr = SlotAt(psa, rgIndices, &slot); FAILED(hr)) return hr;
  IUnknown* element = *slot;
  if (element != nullptr) element->AddRef();
  *static_cast<IUnknown**>(pv) = element;
  return S_OK;
}

HALVOCOM_API HRESULT SafeArrayGetLBound(SAFEARRAY* psa, UINT nDim, LONG* plLbound) {
  if (HRESULT hr = CheckDimension(psa, nDim, plLbound); FAILED(hr)) return hr;
  *plLbound = psa->rgsabound[0].lLbound;
  return S_OK;
}

HALVOCOM_API HRESULT SafeArrayGetUBound(SAFEARRAY* psa, UINT nDim, LONG* plUbound) {
  if (HRESULT hr = CheckDimension(psa, nDim, plUbound); FAILED(hr)) return hr;
  const SAFEARRAYBOUND& bound = psa->rgsabound[0];
  *plUbound = static_cast<LONG>(std::int64_t{bound.lLbound} + bound.cElements - 1);
  return S_OK;
}

HALVOCOM_API HRESULT SafeArrayCopy(SAFEARRAY* psa, SAFEARRAY** ppsaOut) {
  if (ppsaOut == nullptr) return E_INVALIDARG;
  *ppsaOut = nullptr;
  if (psa == nullptr) return S_OK;
  const SAFEARRAYBOUND& bound = psa->rgsabound[0];
  SAFEARRAY* copy = SafeArrayCreateVector(BlockOf(psa)->vartype, bound.lLbound, bound.cElements);
  if (copy == nullptr) return E_OUTOFMEMORY;
  for (ULONG i = 0; i < bound.cElements; ++i) {
    IUnknown* element = Slots(psa)[i];
    if (element != nullptr) element->AddRef();
    Slots(copy)[i] = element;
  }
  *ppsaOut = copy;
  return S_OK;
}

HALVOCOM_API HRESULT SafeArrayDestroy(SAFEARRAY* psa) {
  if (psa == nullptr) return S_OK;
  if (psa->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  for (ULONG i = 0; i < psa->rgsabound[0].cElements; ++i) {
    if (IUnknown* element = Slots(psa)[i]; element != nullptr) element->Release();
  }
  std::free(psa->pvData);
  delete BlockOf(psa);
  return S_OK;
}
