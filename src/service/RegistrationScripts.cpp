#include "service/RegistrationScripts.h"

#include <halvorine/dicomdir.h>

namespace halvorine {
namespace {

constexpr ClassRegistration kClasses[] = {
    {CLSID_DicomDirImpl, u"DicomDirImpl", u"DicomDir.DicomDirImpl.1", u"DicomDir.DicomDirImpl",
     u"DicomDirImpl Class"},
    {CLSID_DicomDirPatient, u"DicomDirPatient", u"DicomDir.DicomDirPatient.1",
     u"DicomDir.DicomDirPatient", u"DicomDirPatient Class"},
    {CLSID_DicomDirStudy, u"DicomDirStudy", u"DicomDir.DicomDirStudy.1", u"DicomDir.DicomDirStudy",
     u"DicomDirStudy Class"},
    {CLSID_DicomDirSeries, u"DicomDirSeries", u"DicomDir.DicomDirSeries.1",
     u"DicomDir.DicomDirSeries", u"DicomDirSeries Class"},
    {CLSID_DicomDirImage, u"DicomDirImage", u"DicomDir.DicomDirImage.1", u"DicomDir.DicomDirImage",
     u"DicomDirImage Class"},
};

constexpr ScriptKey kApplicationScript[] = {
    {u"AppID", Removal::kNever, nullptr, nullptr, nullptr},
    {u"AppID\\%APPID%", Removal::kWhole, u"DicomDir", nullptr, nullptr},
    {u"AppID\\DicomDir.DLL", Removal::kWhole, nullptr, u"AppID", u"%APPID%"},
};

constexpr ScriptKey kClassScript[] = {
    {u"%PROGID%", Removal::kWhole, u"%DESCRIPTION%", nullptr, nullptr},
    {u"%PROGID%\\CLSID", Removal::kWhole, u"%CLSID%", nullptr, nullptr},
    {u"%VIPROGID%", Removal::kWhole, u"%DESCRIPTION%", nullptr, nullptr},
    {u"%VIPROGID%\\CLSID", Removal::kWhole, u"%CLSID%", nullptr, nullptr},
    {u"%VIPROGID%\\CurVer", Removal::kWhole, u"%PROGID%", nullptr, nullptr},
    {u"CLSID", Removal::kNever, nullptr, nullptr, nullptr},
    {u"CLSID\\%CLSID%", Removal::kReplaced, u"%DESCRIPTION%", u"AppID", u"%APPID%"},
    {u"CLSID\\%CLSID%\\ProgID", Removal::kWhole, u"%PROGID%", nullptr, nullptr},
    {u"CLSID\\%CLSID%\\VersionIndependentProgID", Removal::kWhole, u"%VIPROGID%", nullptr, nullptr},
    {u"CLSID\\%CLSID%\\InprocServer32", Removal::kWhole, u"%MODULE%", u"ThreadingModel", u"Both"},
    {u"CLSID\\%CLSID%\\TypeLib", Removal::kWhole, u"%LIBID%", nullptr, nullptr},
};

constexpr ScriptKey kTypeLibraryScript[] = {
    {u"TypeLib", Removal::kNever, nullptr, nullptr, nullptr},
    {u"TypeLib\\%LIBID%", Removal::kIfEmpty, nullptr, nullptr, nullptr},
    {u"TypeLib\\%LIBID%\\%VERSION%", Removal::kWhole, u"%HELPSTRING%", nullptr, nullptr},
    {u"TypeLib\\%LIBID%\\%VERSION%\\%LCID%\\%PLATFORM%", Removal::kWhole, u"%MODULE%", nullptr,
     nullptr},
    {u"TypeLib\\%LIBID%\\%VERSION%\\FLAGS", Removal::kWhole, u"0", nullptr, nullptr},
    {u"TypeLib\\%LIBID%\\%VERSION%\\HELPDIR", Removal::kWhole, u"%MODULEDIR%", nullptr, nullptr},
};

}  // namespace

std::span<const ClassRegistration> RegisteredClasses() { return kClasses; }
RegistrationScript ApplicationScript() { return kApplicationScript; }
RegistrationScript ClassScript() { return kClassScript; }
RegistrationScript TypeLibraryScript() { return kTypeLibraryScript; }

}  // namespace halvorine
