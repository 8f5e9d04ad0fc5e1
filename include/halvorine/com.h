// The platform runtime: the types and calls of the Windows component model and automation that a
// host of the component uses, with the Windows SDK's names and signatures, so that a host written
// for Windows compiles against them with no more than a change of include.
//
// The calls live in libhalvocom.so, which the component and every host link, so that strings and
// arrays cross between them through one allocator.
//
// Conventions at the boundary:
// - A BSTR is allocated by SysAllocString or SysAllocStringLen and freed by SysFreeString. Its
//   layout is that of Windows: a 32-bit byte count in front of the characters, a NUL behind. Null
//   is a valid BSTR and differs from an empty one. The receiver of an out BSTR frees it.
// - A SAFEARRAY of VT_UNKNOWN holds counted references: putting an element adds a reference to it
//   and releases the one it replaces, getting one adds a reference for the caller, a copy adds a
//   reference to each element, and destroying the array releases them. A slot may be null. The
//   receiver of an out SAFEARRAY destroys it.
// - An interface pointer handed out through an out argument carries a reference for the caller,
//   unless the operation says otherwise.
// - The error record is per thread: SetErrorInfo replaces it, GetErrorInfo hands it to the caller
//   and clears it.
// - A string that the runtime hands out through an LPOLESTR* (ProgIDFromCLSID) is freed by the
//   caller with CoTaskMemFree.
// - Classes are found in the registry, a text file in the form of a Windows registry export: the
//   file named by HALVORINE_REGISTRY, else $XDG_DATA_HOME/halvorine/registry.reg (with
//   ~/.local/share for an unset XDG_DATA_HOME). A module that CoGetClassObject loads stays loaded
//   until CoFreeUnusedLibraries finds that its DllCanUnloadNow gives S_OK.
#ifndef HALVORINE_COM_H
#define HALVORINE_COM_H

#include <cstddef>
#include <cstdint>

#if defined(HALVOCOM_BUILDING)
#define HALVOCOM_API extern "C" __attribute__((visibility("default")))
#else
#define HALVOCOM_API extern "C"
#endif

using HRESULT = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using BOOL = std::int32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using UINT = unsigned int;
using LONGLONG = std::int64_t;
using DATE = double;
using VARIANT_BOOL = std::int16_t;
using VARTYPE = std::uint16_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using PVOID = void*;
using LPVOID = void*;
using LPWSTR = OLECHAR*;
using SIZE_T = std::size_t;

constexpr VARIANT_BOOL VARIANT_TRUE = -1;  // 0xFFFF as 16 bits
constexpr VARIANT_BOOL VARIANT_FALSE = 0;
constexpr BOOL TRUE = 1;
constexpr BOOL FALSE = 0;

constexpr VARTYPE VT_EMPTY = 0;
constexpr VARTYPE VT_UNKNOWN = 13;

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000B);
constexpr HRESULT DISP_E_ARRAYISLOCKED = static_cast<HRESULT>(0x8002000D);
constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);
constexpr HRESULT REGDB_E_READREGDB = static_cast<HRESULT>(0x80040150);
constexpr HRESULT REGDB_E_WRITEREGDB = static_cast<HRESULT>(0x80040151);
constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);

constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_BADDB = 1009;  // the registry file can't be parsed

constexpr HRESULT HRESULT_FROM_WIN32(DWORD x) {
  return static_cast<HRESULT>(x) <= 0 ? static_cast<HRESULT>(x)
                                      : static_cast<HRESULT>((x & 0x0000FFFFu) | 0x80070000u);
}

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using LPCLSID = CLSID*;

constexpr bool IsEqualGUID(REFGUID a, REFGUID b) {
  if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
  for (int i = 0; i < 8; ++i) {
    if (a.Data4[i] != b.Data4[i]) return false;
  }
  return true;
}
constexpr bool IsEqualIID(REFIID a, REFIID b) { return IsEqualGUID(a, b); }
constexpr bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return IsEqualGUID(a, b); }
constexpr bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b); }

// {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000,
                                     {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {00000001-0000-0000-C000-000000000046}
inline constexpr IID IID_IClassFactory = {0x00000001, 0x0000, 0x0000,
                                          {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {DF0B3D60-548F-101B-8E65-08002B2BD119}
inline constexpr IID IID_ISupportErrorInfo = {0xDF0B3D60, 0x548F, 0x101B,
                                              {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
// {1CF2B120-547D-101B-8E65-08002B2BD119}
inline constexpr IID IID_IErrorInfo = {0x1CF2B120, 0x547D, 0x101B,
                                       {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
// {22F03340-547D-101B-8E65-08002B2BD119}
inline constexpr IID IID_ICreateErrorInfo = {0x22F03340, 0x547D, 0x101B,
                                             {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

struct IUnknown {
  virtual HRESULT QueryInterface(REFIID riid, void** ppvObject) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

 protected:
  ~IUnknown() = default;
};

using LPUNKNOWN = IUnknown*;

struct IClassFactory : IUnknown {
  virtual HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) = 0;
  virtual HRESULT LockServer(BOOL fLock) = 0;

 protected:
  ~IClassFactory() = default;
};

struct ISupportErrorInfo : IUnknown {
  virtual HRESULT InterfaceSupportsErrorInfo(REFIID riid) = 0;

 protected:
  ~ISupportErrorInfo() = default;
};

struct IErrorInfo : IUnknown {
  virtual HRESULT GetGUID(GUID* pGUID) = 0;
  virtual HRESULT GetSource(BSTR* pBstrSource) = 0;
  virtual HRESULT GetDescription(BSTR* pBstrDescription) = 0;
  virtual HRESULT GetHelpFile(BSTR* pBstrHelpFile) = 0;
  virtual HRESULT GetHelpContext(DWORD* pdwHelpContext) = 0;

 protected:
  ~IErrorInfo() = default;
};

struct ICreateErrorInfo : IUnknown {
  virtual HRESULT SetGUID(REFGUID rguid) = 0;
  virtual HRESULT SetSource(LPOLESTR szSource) = 0;
  virtual HRESULT SetDescription(LPOLESTR szDescription) = 0;
  virtual HRESULT SetHelpFile(LPOLESTR szHelpFile) = 0;
  virtual HRESULT SetHelpContext(DWORD dwHelpContext) = 0;

 protected:
  ~ICreateErrorInfo() = default;
};

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
constexpr USHORT FADF_UNKNOWN = 0x0200;

// A one-dimensional array is all that this runtime makes: SafeArrayCreateVector of VT_UNKNOWN.
struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  PVOID pvData;
  SAFEARRAYBOUND rgsabound[1];
};
using LPSAFEARRAY = SAFEARRAY*;

HALVOCOM_API BSTR SysAllocString(const OLECHAR* psz);
HALVOCOM_API BSTR SysAllocStringLen(const OLECHAR* strIn, UINT ui);
HALVOCOM_API void SysFreeString(BSTR bstrString);
HALVOCOM_API UINT SysStringLen(BSTR pbstr);

// Gives null for any element type but VT_UNKNOWN, and when memory runs out.
HALVOCOM_API SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lLbound, ULONG cElements);
// For VT_UNKNOWN, pv is the IUnknown* itself; for SafeArrayGetElement it points to an IUnknown*.
HALVOCOM_API HRESULT SafeArrayPutElement(SAFEARRAY* psa, LONG* rgIndices, void* pv);
HALVOCOM_API HRESULT SafeArrayGetElement(SAFEARRAY* psa, LONG* rgIndices, void* pv);
HALVOCOM_API HRESULT SafeArrayGetLBound(SAFEARRAY* psa, UINT nDim, LONG* plLbound);
HALVOCOM_API HRESULT SafeArrayGetUBound(SAFEARRAY* psa, UINT nDim, LONG* plUbound);
HALVOCOM_API HRESULT SafeArrayCopy(SAFEARRAY* psa, SAFEARRAY** ppsaOut);
HALVOCOM_API HRESULT SafeArrayDestroy(SAFEARRAY* psa);

HALVOCOM_API HRESULT CreateErrorInfo(ICreateErrorInfo** pperrinfo);
HALVOCOM_API HRESULT SetErrorInfo(ULONG dwReserved, IErrorInfo* perrinfo);
HALVOCOM_API HRESULT GetErrorInfo(ULONG dwReserved, IErrorInfo** pperrinfo);

HALVOCOM_API LPVOID CoTaskMemAlloc(SIZE_T cb);
HALVOCOM_API void CoTaskMemFree(LPVOID pv);

// Writes the braced, upper-case form of rguid with its NUL; gives the characters written, NUL
// included (39), or 0 when cchMax is too small.
HALVOCOM_API int StringFromGUID2(REFGUID rguid, LPOLESTR lpsz, int cchMax);
// Reads a braced GUID in either case; any other text is taken for a programmatic name.
HALVOCOM_API HRESULT CLSIDFromString(LPCOLESTR lpsz, LPCLSID pclsid);

// CO_E_CLASSSTRING for a name that the registry doesn't know.
HALVOCOM_API HRESULT CLSIDFromProgID(LPCOLESTR lpszProgID, LPCLSID lpclsid);
// REGDB_E_CLASSNOTREG for a class without a programmatic name in the registry.
HALVOCOM_API HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* lplpszProgID);

constexpr DWORD CLSCTX_INPROC_SERVER = 0x1;
constexpr DWORD CLSCTX_INPROC_HANDLER = 0x2;
constexpr DWORD CLSCTX_LOCAL_SERVER = 0x4;
constexpr DWORD CLSCTX_REMOTE_SERVER = 0x10;
constexpr DWORD CLSCTX_INPROC = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER;
constexpr DWORD CLSCTX_SERVER = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
constexpr DWORD CLSCTX_ALL = CLSCTX_INPROC | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

struct COAUTHINFO;
struct COSERVERINFO {
  DWORD dwReserved1;
  LPWSTR pwszName;
  COAUTHINFO* pAuthInfo;
  DWORD dwReserved2;
};

// Only in-process servers exist here: a context without CLSCTX_INPROC_SERVER finds no class, and
// pServerInfo is not looked at. An unregistered class gives REGDB_E_CLASSNOTREG, a module that
// can't be loaded HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND), one without DllGetClassObject
// HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND), a registry file that can't be parsed
// HRESULT_FROM_WIN32(ERROR_BADDB).
HALVOCOM_API HRESULT CoGetClassObject(REFCLSID rclsid, DWORD dwClsContext,
                                      COSERVERINFO* pServerInfo, REFIID riid, LPVOID* ppv);
HALVOCOM_API HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN pUnkOuter, DWORD dwClsContext,
                                      REFIID riid, LPVOID* ppv);
// Unloads at once each loaded module whose DllCanUnloadNow gives S_OK. Pointers into an unloaded
// module, class objects included, must not be used afterwards, and no other thread may still be
// inside a call of one of its objects (a Release that has just destroyed the last one included).
HALVOCOM_API void CoFreeUnusedLibraries();

// This runtime's own: how a component writes the registry, where Windows has its registry calls.
// A step acts on a key below HKEY_CLASSES_ROOT, its components separated by '\'.
enum HALVOCOM_REGISTRY_ACTION : DWORD {
  // Creates the key and its ancestors; sets the value named valueName (the default value for a
  // null or empty name) to value, unless value is null.
  HALVOCOM_REGISTRY_SET = 0,
  // Removes the key with all its subkeys; a missing key is no failure.
  HALVOCOM_REGISTRY_DELETE_TREE = 1,
  // Removes the key if it has neither values nor subkeys.
  HALVOCOM_REGISTRY_DELETE_IF_EMPTY = 2,
};
struct HALVOCOM_REGISTRY_STEP {
  HALVOCOM_REGISTRY_ACTION action;
  LPCOLESTR key;
  LPCOLESTR valueName;
  LPCOLESTR value;
};
// Applies the steps in order as one change: the registry file is read, changed and replaced by
// an atomic rename under an exclusive lock (flock on the file's name with ".lock" appended), so
// that concurrent updates are never lost and a crash leaves the former file. Nothing is written
// when any step is invalid (E_INVALIDARG: an empty key or key component, a line break), when the
// file can't be read (REGDB_E_READREGDB) or parsed (HRESULT_FROM_WIN32(ERROR_BADDB)); a file
// that can't be written gives REGDB_E_WRITEREGDB. A failure leaves an error record for the
// calling thread that names the file and the cause.
HALVOCOM_API HRESULT HalvocomUpdateRegistry(const HALVOCOM_REGISTRY_STEP* steps, ULONG cSteps);

#endif  // HALVORINE_COM_H
