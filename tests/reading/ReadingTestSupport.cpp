#include "ReadingTestSupport.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

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
  for (const std::string& field : fields) line += field + (&field == &fields.back() ? "" : "|");
  return line + "\n";
}

template <class Interface>
std::string Field(Interface* object, HRESULT (Interface::*getter)(BSTR*)) {
  BString value;
  EXPECT_EQ((object->*getter)(value.Receive()), S_OK);
  return value.IsNull() ? "(null)" : Trimmed(ToNarrow(value.get()));
}

void AppendObjects(SAFEARRAY* array, int level, std::string& out) {
  ForEachElement(array, [&](LONG, IUnknown* object) {
    SafeArrayPtr children;
    std::vector<std::string> fields = {"-"};
    if (object != nullptr && level == 0) {
      auto* p = static_cast<IDicomDirPatient*>(object);
      fields = {"PATIENT", Field(p, &IDicomDirPatient::GetDicomPatName),
                Field(p, &IDicomDirPatient::GetPatientID)};
      p->GetStudies(children.Receive());
    } else if (object != nullptr && level == 1) {
      auto* s = static_cast<IDicomDirStudy*>(object);
      DATE date = 0;
      s->GetStudyDate(&date);
      fields = {"STUDY",
                Date(date),
                Field(s, &IDicomDirStudy::GetAccessionNr),
                Field(s, &IDicomDirStudy::GetStudyDescription),
                Field(s, &IDicomDirStudy::GetInstitution),
                Field(s, &IDicomDirStudy::GetStudyInstUID),
                Field(s, &IDicomDirStudy::GetStudyID)};
      s->GetSeries(children.Receive());
    } else if (object != nullptr && level == 2) {
      auto* r = static_cast<IDicomDirSeries*>(object);
      SHORT number = 0;
      r->GetSeriesNumber(&number);
      fields = {"SERIES", Field(r, &IDicomDirSeries::GetModality),
                Field(r, &IDicomDirSeries::GetSeriesInstUID), std::to_string(number)};
      r->GetImages(children.Receive());
    } else if (object != nullptr) {
      auto* i = static_cast<IDicomDirImage*>(object);
      LONGLONG number = 0;
      i->GetInstanceNumber(&number);
      fields = {"IMAGE", Field(i, &IDicomDirImage::GetImageFilename),
                Field(i, &IDicomDirImage::GetSOPClassUID),
                Field(i, &IDicomDirImage::GetSOPInstanceUID), std::to_string(number)};
    }
    out += Line(level, fields);
    AppendObjects(children.get(), level + 1, out);
  });
}

// One directory record as dcmdump shows it: values by tag "gggg,eeee", lower case.
using DumpedRecord = std::map<std::string, std::string>;

class Dump {
 public:
  Dump(const std::string& text, std::string folder) : folder_(std::move(folder)) {
    std::istringstream lines(text);
    DumpedRecord* current = nullptr;
    std::size_t recordIndent = 2;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t indent = line.find_first_not_of(' ');
      if (indent == std::string::npos) continue;
      if (line.find("\"Directory Record\"", indent) != std::string::npos) {
        std::getline(lines, line);
        current = &records_[std::strtoul(line.c_str() + line.find("offset=$") + 8, nullptr, 10)];
        recordIndent = indent;
      } else if (line[indent] == '(' && line.size() > indent + 15) {
        // "(0010,0010) PN [Doe^John]   # 8, 1 PatientName" gives "Doe^John"; "up 406", "406".
        std::string value = line.substr(indent + 15);
        if (value.rfind("(no value", 0) == 0) {
          value.clear();
        } else if (value.front() == '[') {
          value = Trimmed(value.substr(1, value.rfind(']') - 1));
        } else {
          value = value.substr(0, value.find(' '));
        }
        const std::string tag = line.substr(indent + 1, 9);
        if (indent == 0) top_[tag] = value;
        if (current != nullptr && indent == recordIndent + 2) (*current)[tag] = value;
      }
    }
  }

  std::string Tree() const {
    std::string out;
    AppendChain(std::stoul(top_.at("0004,1200")), 0, out);
    return out;
  }

 private:
  void AppendChain(unsigned long offset, int level, std::string& out) const {
    static const char* const kTypes[] = {"PATIENT", "STUDY", "SERIES", "IMAGE"};
    for (; offset != 0; offset = std::stoul(records_.at(offset).at("0004,1400"))) {
      const DumpedRecord& record = records_.at(offset);
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
      } else if (level == 0) {
        out += Line(level, {"PATIENT", get("0010,0010"), get("0010,0020")});
      } else if (level == 1) {
        out += Line(level, {"STUDY", Date(DicomToOleDate(text("0008,0020"), text("0008,0030"))),
                            get("0008,0050"), get("0008,1030"), get("0008,0080"), get("0020,000d"),
                            get("0020,0010")});
      } else if (level == 2) {
        out += Line(level, {"SERIES", get("0008,0060"), get("0020,000e"), number("0020,0011")});
      } else {
        std::string file = get("0004,1500");
        for (char& c : file) c = c == '\\' ? '/' : c;
        out += Line(level, {"IMAGE", folder_ + "/" + file, get("0004,1510"), get("0004,1511"),
                            number("0020,0013")});
      }
      if (level < 3 && record.at("0004,1430") == kTypes[level]) {
        const unsigned long lower = std::stoul(record.at("0004,1420"));
        if (lower != 0) AppendChain(lower, level + 1, out);
      }
    }
  }

  std::string folder_;
  std::map<unsigned long, DumpedRecord> records_;
  DumpedRecord top_;
};

}  // namespace

std::string LoadedTree(SAFEARRAY* patients) {
  std::string out;
  AppendObjects(patients, 0, out);
  return out;
}

std::string LoadTree(const std::string& folder) {
  RecordOffsetIndex index;
  SafeArrayPtr patients;
  DirectoryReader(index, kCreators, ToWide(folder))
      .ReadDirectory(folder + "/DICOMDIR", patients.Receive());
  return LoadedTree(patients.get());
}

std::string DcmdumpTree(const std::string& folder) {
  return Dump(RunCommand("dcmdump -q -Un +L " + folder + "/DICOMDIR"), folder).Tree();
}

std::string RunCommand(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string out;
  if (!pipe) {
    ADD_FAILURE() << "can't run " << command;
    return out;
  }
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) {
    out.append(buffer, got);
  }
  EXPECT_EQ(pclose(pipe.release()), 0)
      << command << " failed; is the tool installed (tools/setup.sh)?";
  return out;
}

void ExpectWrittenDiscMatchesDcmdump(const std::string& folder, const std::string& command) {
  std::filesystem::create_directories(folder + "/IMAGES");
  // File names of at most 8 characters, as a DICOM writer expects.
  const struct {
    const char* file;
    const char* patient;
    int study;
    int series;
    int instance;
  } images[] = {
      {"IM1", "ALPHA", 1, 1, 1}, {"IM2", "ALPHA", 1, 1, 2}, {"IM3", "ALPHA", 1, 2, 1},
      {"IM4", "ALPHA", 2, 1, 1}, {"IM5", "BETA", 3, 1, 7},  {"IM6", "BETA", 3, 2, -3},
  };
  for (const auto& image : images) {
    const std::string study = std::to_string(image.study);
    const std::string series = std::to_string(image.series);
    const std::string uid = "1.2.826.0.1.3680043.10.1." + study;
    const std::string instance = uid + "." + series + "." + std::to_string(image.instance);
    const std::string patient = image.patient;
    const std::string path = folder + "/IMAGES/" + image.file;
    WriteWholeFile(
        path + ".txt",
        "(0002,0001) OB 00\\01\n(0002,0002) UI =SecondaryCaptureImageStorage\n(0002,0003) UI " +
            instance + "\n(0002,0010) UI =LittleEndianExplicit\n" +
            "(0008,0016) UI =SecondaryCaptureImageStorage\n(0008,0018) UI " + instance +
            "\n(0008,0020) DA 2024030" + study + "\n(0008,0030) TM 101500\n(0008,0050) SH A" +
            study + "\n(0008,0060) CS " + (image.series % 2 == 0 ? "MR" : "CT") +
            "\n(0008,0080) LO Clinic\n(0008,1030) LO Study " + study + "\n(0010,0010) PN " +
            patient + "^Test\n(0010,0020) LO " + patient + "\n(0020,000d) UI " + uid +
            "\n(0020,000e) UI " + uid + "." + series + "\n(0020,0010) SH S" + study +
            "\n(0020,0011) IS " + series + "\n(0020,0013) IS " + std::to_string(image.instance) +
            "\n(0028,0002) US 1\n(0028,0004) CS MONOCHROME2\n(0028,0010) US 2\n(0028,0011) US 2\n"
            "(0028,0100) US 8\n(0028,0101) US 8\n(0028,0102) US 7\n(0028,0103) US 0\n"
            "(7fe0,0010) OB 00\\01\\02\\03\n");
    RunCommand("dump2dcm --write-file " + path + ".txt " + path);
    std::filesystem::remove(path + ".txt");
  }
  RunCommand("cd " + folder + " && " + command + " 2>&1");
  const std::string tree = LoadTree(folder);
  EXPECT_NE(tree.find("IMAGE|" + folder + "/IMAGES/IM6|"), std::string::npos) << tree;
  EXPECT_EQ(tree, DcmdumpTree(folder));
}

}  // namespace halvorine::testing
