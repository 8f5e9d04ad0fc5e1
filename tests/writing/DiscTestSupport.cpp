#include "DiscTestSupport.h"

#include <sys/wait.h>

#include <cstdio>

#include "TempFolder.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

template <class T>
SafeArrayPtr ArrayFrom(const std::vector<ComPtr<T>>& objects, LONG lower = 0) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, lower, static_cast<ULONG>(objects.size())));
  for (LONG i = 0; i < static_cast<LONG>(objects.size()); ++i) {
    LONG index = lower + i;
    EXPECT_EQ(SafeArrayPutElement(array.get(), &index, objects[std::size_t(i)].get()), S_OK);
  }
  return array;
}

// Reads explicit VR little endian elements from bytes[begin, end) into values; the records of
// (0004,1220) go into file.records.
void ReadElements(DirectoryFile& file, std::size_t begin, std::size_t end, ElementValues& values) {
  const std::string& bytes = file.bytes;
  for (std::size_t at = begin; at < end;) {
    const std::uint32_t tag = Tag(ULOf(bytes.substr(at, 2)), ULOf(bytes.substr(at + 2, 2)));
    const std::string code = bytes.substr(at + 4, 2);
    const bool longForm = code == "OB" || code == "OW" || code == "SQ" || code == "UN";
    const std::size_t header = longForm ? 12 : 8;
    const std::uint32_t length = ULOf(bytes.substr(at + (longForm ? 8 : 6), longForm ? 4 : 2));
    values[tag] = bytes.substr(at + header, code == "SQ" ? 0 : length);
    at += header;
    if (tag != Tag(0x0004, 0x1220)) {
      at += length;
      continue;
    }
    file.sequenceLength = length;
    file.firstRecordOffset = static_cast<std::uint32_t>(at);
    for (const std::size_t sequenceEnd = at + length; at < sequenceEnd;) {
      EXPECT_EQ(bytes.substr(at, 4), std::string("\xFE\xFF\x00\xE0", 4)) << "at " << at;
      const std::uint32_t itemLength = ULOf(bytes.substr(at + 4, 4));
      auto& record = file.records.emplace_back(DirectoryFile::Record{std::uint32_t(at), {}});
      ReadElements(file, at + 8, at + 8 + itemLength, record.values);
      at += 8 + itemLength;
    }
  }
}

}  // namespace

BString Bstr(const std::string& narrowText) { return BString::Copy(ToWide(narrowText)); }

SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound) {
  std::vector<ComPtr<IDicomDirPatient>> patients;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const std::string p = std::to_string(i + 1);
    auto& patient = patients.emplace_back(HALVORINE_NEW(DicomDirPatient));
    patient->SetDicomPatName(Bstr("Doe^" + p).get());
    patient->SetPatientID(Bstr("ID" + p).get());
    patient->SetPatientSex(Bstr("F").get());
    std::vector<ComPtr<IDicomDirStudy>> studies;
    for (std::size_t j = 0; j < shape[i].size(); ++j) {
      const std::string s = std::to_string(j + 1);
      const std::string uid = "1.2.3." + p + "." + s;
      auto& study = studies.emplace_back(HALVORINE_NEW(DicomDirStudy));
      study->SetStudyInstUID(Bstr(uid).get());
      study->SetStudyID(Bstr("S" + s).get());
      study->SetAccessionNr(Bstr("A" + s).get());
      study->SetStudyDescription(Bstr("Head").get());
      study->SetInstitution(Bstr("Clinic").get());
      study->SetStudyDate(45360.5);  // 9 March 2024, 12:00:00
      std::vector<ComPtr<IDicomDirSeries>> series;
      for (std::size_t k = 0; k < shape[i][j].size(); ++k) {
        const std::string seriesUid = uid + "." + std::to_string(k + 1);
        auto& one = series.emplace_back(HALVORINE_NEW(DicomDirSeries));
        one->SetModality(Bstr("OT").get());
        one->SetSeriesInstUID(Bstr(seriesUid).get());
        one->SetSeriesNumber(static_cast<SHORT>(k + 1));
        std::vector<ComPtr<IDicomDirImage>> images;
        for (int l = 1; l <= shape[i][j][k]; ++l) {
          auto& image = images.emplace_back(HALVORINE_NEW(DicomDirImage));
          image->SetSOPClassUID(Bstr("1.2.840.10008.5.1.4.1.1.7").get());
          image->SetSOPInstanceUID(Bstr(seriesUid + "." + std::to_string(l)).get());
          image->SetTransferSyntaxUID(Bstr("1.2.840.10008.1.2.1").get());
          image->SetInstanceNumber(l);
          image->SetImageFilename(Bstr(imageSource).get());
        }
        if (!images.empty()) one->SetImages(ArrayFrom(images).get());
      }
      study->SetSeries(ArrayFrom(series).get());
    }
    patient->SetStudies(ArrayFrom(studies).get());
  }
  return ArrayFrom(patients, lowerBound);
}

std::string CreateDiscThroughService(const std::string& folder, SAFEARRAY* tree) {
  BString output;
  EXPECT_EQ(HALVORINE_NEW(DicomDirImpl)
                ->CreateDicomDir(Bstr(folder).get(), Bstr("Disc").get(), tree, output.Receive(),
                                 VARIANT_FALSE, nullptr),
            S_OK);
  return folder + "/Disc/DICOMDIR";
}

std::string ToolOutputOfADisc(const std::string& tool) {
  const TempFolder folder;
  WriteWholeFile(folder.Path("image"), "image");
  const std::string commandLine =
      tool + " '" +
      CreateDiscThroughService(folder.Path(),
                               MakeTree({{{2, 0}, {}}, {{1}}}, folder.Path("image")).get()) +
      "' 2>&1";
  std::FILE* pipe = popen(commandLine.c_str(), "r");
  std::string output;
  for (int letter; pipe != nullptr && (letter = std::fgetc(pipe)) != EOF;) {
    output += static_cast<char>(letter);
  }
  const int status = pipe == nullptr ? -1 : pclose(pipe);
  EXPECT_TRUE(status != -1 && WEXITSTATUS(status) != 127)
      << commandLine << " can't be run; tools/setup.sh installs it.\n"
      << output;
  return output;
}

std::uint32_t ULOf(const std::string& value) {
  std::uint32_t number = 0;
  for (std::size_t i = value.size(); i-- > 0;) {
    number = number << 8 | static_cast<std::uint8_t>(value[i]);
  }
  return number;
}

DirectoryFile ReadDirectoryFile(const std::string& path) {
  DirectoryFile file;
  file.bytes = ReadWholeFile(path);
  EXPECT_EQ(file.bytes.substr(0, 132), std::string(128, '\0') + "DICM");
  ReadElements(file, 132, file.bytes.size(), file.header);
  return file;
}

std::string LittleEndian(std::uint32_t value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value) {
  const auto length = static_cast<std::uint32_t>(value.size());
  return LittleEndian(group, 2) + LittleEndian(element, 2) + code +
         (code == "OB" || code == "SQ" ? std::string(2, '\0') + LittleEndian(length, 4)
                                       : LittleEndian(length, 2)) +
         value;
}

std::string BytesOf(const DicomEngine::BufferWriter& writer) {
  return std::string(reinterpret_cast<const char*>(writer.GetBuffer()), writer.GetCursor());
}

}  // namespace halvorine
