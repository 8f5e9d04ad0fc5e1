#include "ReadingTestSupport.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "platform/BString.h"
#include "platform/SafeArrayPtr.h"
#include "reading/DirectoryReader.h"
#include "support/MyException.h"
#include "support/TextConversion.h"
#include "support/Utilities.h"

namespace halvorine::testing {
namespace {

std::string Trimmed(std::string text) { return text.erase(text.find_last_not_of(' ') + 1); }

std::string Date(double date) { return FormatBounded(64, "%.6f", date); }

// "TYPE|field|field...", "-" for a record of another type.
std::string Line(int level, const std::vector<std::string>& fields) {
  std::string line(static_cast<std::size_t>(2 * level), ' ');
  for (const std::string& field : fields) line += field + "|";
  line.back() = '\n';
  return line;
}

template <class Interface>
std::string Field(IUnknown* object, HRESULT (Interface::*getter)(BSTR*)) {
  BString value;
  EXPECT_EQ((static_cast<Interface*>(object)->*getter)(value.Receive()), S_OK);
  return value.IsNull() ? "(null)" : Trimmed(ToNarrow(value.get()));
}

void AppendObjects(SAFEARRAY* array, int level, std::string& out) {
  ForEachElement(array, [&](LONG, IUnknown* o) {
    SafeArrayPtr children;
    std::vector<std::string> fields = {"-"};
    DATE date = 0;
    SHORT series = 0;
    LONGLONG instance = 0;
    if (o != nullptr && level == 0) {
      fields = {"PATIENT", Field(o, &IDicomDirPatient::GetDicomPatName),
                Field(o, &IDicomDirPatient::GetPatientID)};
      static_cast<IDicomDirPatient*>(o)->GetStudies(children.Receive());
    } else if (o != nullptr && level == 1) {
      static_cast<IDicomDirStudy*>(o)->GetStudyDate(&date);
      fields = {"STUDY",
                Date(date),
                Field(o, &IDicomDirStudy::GetAccessionNr),
                Field(o, &IDicomDirStudy::GetStudyDescription),
                Field(o, &IDicomDirStudy::GetInstitution),
                Field(o, &IDicomDirStudy::GetStudyInstUID),
                Field(o, &IDicomDirStudy::GetStudyID)};
      static_cast<IDicomDirStudy*>(o)->GetSeries(children.Receive());
    } else if (o != nullptr && level == 2) {
      static_cast<IDicomDirSeries*>(o)->GetSeriesNumber(&series);
      fields = {"SERIES", Field(o, &IDicomDirSeries::GetModality),
                Field(o, &IDicomDirSeries::GetSeriesInstUID), std::to_string(series)};
      static_cast<IDicomDirSeries*>(o)->GetImages(children.Receive());
    } else if (o != nullptr) {
      static_cast<IDicomDirImage*>(o)->GetInstanceNumber(&instance);
      fields = {"IMAGE", Field(o, &IDicomDirImage::GetImageFilename),
                Field(o, &IDicomDirImage::GetSOPClassUID),
                Field(o, &IDicomDirImage::GetSOPInstanceUID), std::to_string(instance)};
    }
    out += Line(level, fields);
    AppendObjects(children.get(), level + 1, out);
  });
}

// What dcmdump shows of the records, by the offset that it gives each, and at 0 of the header:
// values by tag "gggg,eeee", lower case.
using Dumped = std::map<unsigned long, std::map<std::string, std::string>>;

Dumped ReadDump(const std::string& text) {
  Dumped records;
  std::istringstream lines(text);
  unsigned long current = 0;
  std::size_t recordIndent = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent == std::string::npos || line[indent] != '(' || line.size() <= indent + 15) continue;
    if (line.find("\"Directory Record\"", indent) != std::string::npos) {
      std::getline(lines, line);
      current = std::strtoul(line.c_str() + line.find("offset=$") + 8, nullptr, 10);
      recordIndent = indent + 2;
      continue;
    }
    // "(0010,0010) PN [Doe^John]   # 8, 1 PatientName" gives "Doe^John"; "up 406", "406".
    std::string value = line.substr(indent + 15);
    if (value.rfind("(no value", 0) == 0) {
      value.clear();
    } else if (value.front() == '[') {
      value = Trimmed(value.substr(1, value.rfind(']') - 1));
    } else {
      value = value.substr(0, value.find(' '));
    }
    if (indent == 0 || indent == recordIndent)
      records[indent == 0 ? 0 : current][line.substr(indent + 1, 9)] = value;
  }
  return records;
}

void AppendChain(const Dumped& records, const std::string& folder, unsigned long offset, int level,
                 std::string& out) {
  static const char* const kTypes[] = {"PATIENT", "STUDY", "SERIES", "IMAGE"};
  for (; offset != 0; offset = std::stoul(records.at(offset).at("0004,1400"))) {
    const auto& record = records.at(offset);
    const auto get = [&](const char* tag) {
      const auto found = record.find(tag);
      return found == record.end() || found->second.empty() ? "(null)" : found->second;
    };
    const auto number = [&](const char* tag) {
      return std::to_string(std::atoi(get(tag).c_str()));
    };
    const auto text = [&](const char* tag) {
      return get(tag) == "(null)" ? nullptr : record.at(tag).c_str();
    };
    if (level > 3 || record.at("0004,1430") != kTypes[level]) {
      out += Line(level, {"-"});
      continue;
    }
    if (level == 0) {
      out += Line(level, {"PATIENT", get("0010,0010"), get("0010,0020")});
    } else if (level == 1) {
      out += Line(level, {"STUDY", Date(DicomToOleDate(text("0008,0020"), text("0008,0030"))),
                          get("0008,0050"), get("0008,1030"), get("0008,0080"), get("0020,000d"),
                          get("0020,0010")});
    } else if (level == 2) {
      out += Line(level, {"SERIES", get("0008,0060"), get("0020,000e"), number("0020,0011")});
    } else {
      std::string file = get("0004,1500");
      std::replace(file.begin(), file.end(), '\\', '/');
      out += Line(level, {"IMAGE", folder + "/" + file, get("0004,1510"), get("0004,1511"),
                          number("0020,0013")});
    }
    const unsigned long lower = level < 3 ? std::stoul(record.at("0004,1420")) : 0;
    if (lower != 0) AppendChain(records, folder, lower, level + 1, out);
  }
}

}  // namespace

std::string LoadedTree(SAFEARRAY* patients) {
  std::string out;
  AppendObjects(patients, 0, out);
  return out;
}

std::string LoadTree(const std::string& folder) {
  SafeArrayPtr patients;
  const std::string message = RaisedMessage([&] {
    RecordOffsetIndex index;
    DirectoryReader(index, kRecordCreators, ToWide(folder))
        .ReadDirectory(folder + "/DICOMDIR", patients.Receive());
  });
  if (message == "nothing raised") return LoadedTree(patients.get());
  EXPECT_EQ(patients.get(), nullptr) << "a failed load handed out a tree";
  return "!" + message;
}

std::string DcmdumpTree(const std::string& folder) {
  const Dumped records = ReadDump(RunCommand("dcmdump -q -Un +L " + folder + "/DICOMDIR"));
  std::string out;
  AppendChain(records, folder, std::stoul(records.at(0).at("0004,1200")), 0, out);
  return out;
}

std::string RunCommand(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string out;
  for (int c; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) out += static_cast<char>(c);
  EXPECT_TRUE(pipe != nullptr && pclose(pipe) == 0)
      << command << " failed; is the tool installed (tools/setup.sh)?";
  return out;
}

void ExpectWrittenDiscMatchesDcmdump(const std::string& folder, const std::string& command) {
  std::filesystem::create_directories(folder + "/IMAGES");
  // Patient, study, series and instance of IM1 to IM6: names of at most 8 characters, as a DICOM
  // writer expects.
  const char* const images[] = {"ALPHA 1 1 1", "ALPHA 1 1 2", "ALPHA 1 2 1",
                                "ALPHA 2 1 1", "BETA 3 1 7",  "BETA 3 2 -3"};
  for (const char* const& image : images) {
    char patient[8] = {};
    int study = 0, series = 0, instance = 0;
    std::sscanf(image, "%7s %d %d %d", patient, &study, &series, &instance);
    const std::string path = folder + "/IMAGES/IM" + std::to_string(&image - images + 1);
    WriteWholeFile(
        path + ".txt",
        FormatBounded(
            2048,
            "(0002,0001) OB 00\\01\n(0002,0002) UI =SecondaryCaptureImageStorage\n"
            "(0002,0003) UI 1.2.826.0.1.3680043.10.1.%2$d.%3$d.%4$d\n"
            "(0002,0010) UI =LittleEndianExplicit\n(0008,0016) UI =SecondaryCaptureImageStorage\n"
            "(0008,0018) UI 1.2.826.0.1.3680043.10.1.%2$d.%3$d.%4$d\n(0008,0020) DA 2024030%2$d\n"
            "(0008,0030) TM 101500\n(0008,0050) SH A%2$d\n(0008,0060) CS %5$s\n"
            "(0008,0080) LO Clinic\n(0008,1030) LO Study %2$d\n(0010,0010) PN %1$s^Test\n"
            "(0010,0020) LO %1$s\n(0020,000d) UI 1.2.826.0.1.3680043.10.1.%2$d\n"
            "(0020,000e) UI 1.2.826.0.1.3680043.10.1.%2$d.%3$d\n(0020,0010) SH S%2$d\n"
            "(0020,0011) IS %3$d\n(0020,0013) IS %4$d\n(0028,0002) US 1\n"
            "(0028,0004) CS MONOCHROME2\n(0028,0010) US 2\n(0028,0011) US 2\n(0028,0100) US 8\n"
            "(0028,0101) US 8\n(0028,0102) US 7\n(0028,0103) US 0\n(7fe0,0010) OB 00\\01\\02\\03\n",
            patient, study, series, instance, series % 2 == 0 ? "MR" : "CT"));
    RunCommand("dump2dcm --write-file " + path + ".txt " + path + " && rm " + path + ".txt");
  }
  RunCommand("cd " + folder + " && " + command + " 2>&1");
  const std::string tree = LoadTree(folder);
  EXPECT_NE(tree.find("IMAGE|" + folder + "/IMAGES/IM6|"), std::string::npos) << tree;
  EXPECT_EQ(tree, DcmdumpTree(folder));
}

}  // namespace halvorine::testing
