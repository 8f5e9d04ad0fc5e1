#include "RecordTree.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>

#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/SafeArrayPtr.h"
#include "support/MyException.h"
#include "support/TextConversion.h"
#include "support/Utilities.h"

namespace halvorine::testing {
namespace {

std::string Trimmed(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

std::string Text(BSTR text) { return text == nullptr ? "(null)" : Trimmed(ToNarrow(text)); }

template <class Interface, class Getter>
std::string Field(Interface* object, Getter getter) {
  BString value;
  EXPECT_EQ((object->*getter)(value.Receive()), S_OK);
  return Text(value.get());
}

std::string Date(double date) { return FormatBounded(64, "%.6f", date); }

std::string Line(int level, const std::string& text) {
  return std::string(static_cast<std::size_t>(2 * level), ' ') + text + "\n";
}

void AppendObjects(SAFEARRAY* array, int level, std::string& out);

void AppendObject(IUnknown* object, int level, std::string& out) {
  SafeArrayPtr children;
  if (object == nullptr) {
    out += Line(level, "-");
  } else if (level == 0) {
    auto* p = static_cast<IDicomDirPatient*>(object);
    out += Line(level, "PATIENT name=" + Field(p, &IDicomDirPatient::GetDicomPatName) +
                           " id=" + Field(p, &IDicomDirPatient::GetPatientID));
    p->GetStudies(children.Receive());
  } else if (level == 1) {
    auto* s = static_cast<IDicomDirStudy*>(object);
    DATE date = 0;
    s->GetStudyDate(&date);
    out += Line(level, "STUDY date=" + Date(date) +
                           " acc=" + Field(s, &IDicomDirStudy::GetAccessionNr) +
                           " desc=" + Field(s, &IDicomDirStudy::GetStudyDescription) +
                           " inst=" + Field(s, &IDicomDirStudy::GetInstitution) +
                           " uid=" + Field(s, &IDicomDirStudy::GetStudyInstUID) +
                           " id=" + Field(s, &IDicomDirStudy::GetStudyID));
    s->GetSeries(children.Receive());
  } else if (level == 2) {
    auto* r = static_cast<IDicomDirSeries*>(object);
    SHORT number = 0;
    r->GetSeriesNumber(&number);
    out += Line(level, "SERIES modality=" + Field(r, &IDicomDirSeries::GetModality) +
                           " uid=" + Field(r, &IDicomDirSeries::GetSeriesInstUID) +
                           " number=" + std::to_string(number));
    r->GetImages(children.Receive());
  } else {
    auto* i = static_cast<IDicomDirImage*>(object);
    LONGLONG number = 0;
    i->GetInstanceNumber(&number);
    out += Line(level, "IMAGE file=" + Field(i, &IDicomDirImage::GetImageFilename) +
                           " class=" + Field(i, &IDicomDirImage::GetSOPClassUID) +
                           " instance=" + Field(i, &IDicomDirImage::GetSOPInstanceUID) +
                           " number=" + std::to_string(number));
  }
  AppendObjects(children.get(), level + 1, out);
}

void AppendObjects(SAFEARRAY* array, int level, std::string& out) {
  if (array == nullptr) return;
  LONG lower = 0;
  LONG upper = -1;
  SafeArrayGetLBound(array, 1, &lower);
  SafeArrayGetUBound(array, 1, &upper);
  for (LONG i = lower; i <= upper; ++i) {
    ComPtr<IUnknown> object;
    SafeArrayGetElement(array, &i, object.Receive());
    AppendObject(object.get(), level, out);
  }
}

// One directory record as dcmdump shows it: values by tag "gggg,eeee", lower case.
using DumpedRecord = std::map<std::string, std::string>;

// "(0010,0010) PN [Doe^John]   # 8, 1 PatientName" gives "Doe^John"; "up 406" gives "406".
std::string DumpedValue(const std::string& rest) {
  if (rest.rfind("(no value", 0) == 0) return "";
  if (!rest.empty() && rest.front() == '[') {
    return Trimmed(rest.substr(1, rest.rfind(']') - 1));
  }
  return rest.substr(0, rest.find(' '));
}

class Dump {
 public:
  Dump(const std::string& text, std::string folder) : folder_(std::move(folder)) {
    std::istringstream lines(text);
    std::string line;
    DumpedRecord* current = nullptr;
    while (std::getline(lines, line)) {
      const std::size_t indent = line.find_first_not_of(' ');
      if (indent == std::string::npos) continue;
      if (line.find("\"Directory Record\"", indent) != std::string::npos) {
        std::getline(lines, line);
        const std::size_t mark = line.find("offset=$");
        current = &records_[std::strtoul(line.c_str() + mark + 8, nullptr, 10)];
        recordIndent_ = indent;
      } else if (line[indent] == '(' && line.size() > indent + 15) {
        const std::string tag = line.substr(indent + 1, 9);
        const std::string value = DumpedValue(line.substr(indent + 15));
        if (indent == 0) top_[tag] = value;
        if (current != nullptr && indent == recordIndent_ + 2) (*current)[tag] = value;
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
    while (offset != 0) {
      const DumpedRecord& record = records_.at(offset);
      AppendRecord(record, level, out);
      offset = std::stoul(record.at("0004,1400"));
    }
  }

  static std::string Get(const DumpedRecord& record, const char* tag) {
    const auto found = record.find(tag);
    return found == record.end() || found->second.empty() ? "(null)" : found->second;
  }

  static std::string Number(const DumpedRecord& record, const char* tag) {
    const auto found = record.find(tag);
    return std::to_string(found == record.end() ? 0 : std::atoi(found->second.c_str()));
  }

  void AppendRecord(const DumpedRecord& record, int level, std::string& out) const {
    static const char* const kTypes[] = {"PATIENT", "STUDY", "SERIES", "IMAGE"};
    const std::string type = record.at("0004,1430");
    if (level > 3 || type != kTypes[level]) {
      out += Line(level, "-");
      return;
    }
    if (level == 0) {
      out += Line(level,
                  "PATIENT name=" + Get(record, "0010,0010") + " id=" + Get(record, "0010,0020"));
    } else if (level == 1) {
      const std::string date = Get(record, "0008,0020");
      const std::string time = Get(record, "0008,0030");
      out +=
          Line(level, "STUDY date=" +
                          Date(DicomToOleDate(date == "(null)" ? nullptr : date.c_str(),
                                              time == "(null)" ? nullptr : time.c_str())) +
                          " acc=" + Get(record, "0008,0050") + " desc=" + Get(record, "0008,1030") +
                          " inst=" + Get(record, "0008,0080") + " uid=" + Get(record, "0020,000d") +
                          " id=" + Get(record, "0020,0010"));
    } else if (level == 2) {
      out += Line(level, "SERIES modality=" + Get(record, "0008,0060") + " uid=" +
                             Get(record, "0020,000e") + " number=" + Number(record, "0020,0011"));
    } else {
      std::string file = Get(record, "0004,1500");
      for (char& c : file) c = c == '\\' ? '/' : c;
      out +=
          Line(level, "IMAGE file=" + folder_ + "/" + file + " class=" + Get(record, "0004,1510") +
                          " instance=" + Get(record, "0004,1511") +
                          " number=" + Number(record, "0020,0013"));
      return;
    }
    const unsigned long lower = std::stoul(record.at("0004,1420"));
    if (lower != 0) AppendChain(lower, level + 1, out);
  }

  std::string folder_;
  std::map<unsigned long, DumpedRecord> records_;
  std::map<std::string, std::string> top_;
  std::size_t recordIndent_ = 2;
};

}  // namespace

std::string LoadedTree(SAFEARRAY* patients) {
  std::string out;
  AppendObjects(patients, 0, out);
  return out;
}

std::string DumpedTree(const std::string& dump, const std::string& folder) {
  return Dump(dump, folder).Tree();
}

std::string RunCommand(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string out;
  if (!pipe) {
    ADD_FAILURE() << "can't run " << command;
    return out;
  }
  char buffer[4096];
  std::size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0) out.append(buffer, got);
  const int status = pclose(pipe.release());
  EXPECT_EQ(status, 0) << command << " failed; is the tool installed (tools/setup.sh)?";
  return out;
}

}  // namespace halvorine::testing
