#include "DiscTestSupport.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>

#include "TempFolder.h"
#include "platform/ComPtr.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

template <class Interface>
ComPtr<Interface> NewObject(REFCLSID clsid, REFIID iid) {
  ComPtr<Interface> object;
  IClassFactory* factory = nullptr;
  EXPECT_EQ(DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  if (factory != nullptr) {
    EXPECT_EQ(factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(object.Receive())),
              S_OK);
    factory->Release();
  }
  return object;
}

template <class T>
SafeArrayPtr ArrayFrom(const std::vector<ComPtr<T>>& objects, LONG lower = 0) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, lower, static_cast<ULONG>(objects.size())));
  for (std::size_t i = 0; i < objects.size(); ++i) {
    LONG index = lower + static_cast<LONG>(i);
    EXPECT_EQ(SafeArrayPutElement(array.get(), &index, objects[i].get()), S_OK);
  }
  return array;
}

ComPtr<IDicomDirImage> MakeImage(const std::string& uid, int number, const std::string& source) {
  auto image = NewImage();
  image->SetSOPClassUID(Bstr(u"1.2.840.10008.5.1.4.1.1.7").get());
  image->SetSOPInstanceUID(Bstr(uid).get());
  image->SetTransferSyntaxUID(Bstr(u"1.2.840.10008.1.2.1").get());
  image->SetInstanceNumber(number);
  image->SetImageFilename(Bstr(source).get());
  return image;
}

ComPtr<IDicomDirSeries> MakeSeries(const std::string& uid, int number, int imageCount,
                                   const std::string& source) {
  auto series = NewSeries();
  series->SetModality(Bstr(u"OT").get());
  series->SetSeriesInstUID(Bstr(uid).get());
  series->SetSeriesNumber(static_cast<SHORT>(number));
  std::vector<ComPtr<IDicomDirImage>> images;
  for (int l = 1; l <= imageCount; ++l) {
    images.push_back(MakeImage(uid + "." + std::to_string(l), l, source));
  }
  if (!images.empty()) series->SetImages(ArrayFrom(images).get());
  return series;
}

ComPtr<IDicomDirStudy> MakeStudy(const std::string& uid, int number,
                                 const std::vector<int>& imageCounts, const std::string& source) {
  auto study = NewStudy();
  study->SetStudyInstUID(Bstr(uid).get());
  study->SetStudyID(Bstr("S" + std::to_string(number)).get());
  study->SetAccessionNr(Bstr("A" + std::to_string(number)).get());
  study->SetStudyDescription(Bstr(u"Head").get());
  study->SetInstitution(Bstr(u"Clinic").get());
  study->SetStudyDate(45360.5);  // 9 March 2024, 12:00:00
  std::vector<ComPtr<IDicomDirSeries>> series;
  for (std::size_t k = 0; k < imageCounts.size(); ++k) {
    const int number1 = static_cast<int>(k) + 1;
    series.push_back(
        MakeSeries(uid + "." + std::to_string(number1), number1, imageCounts[k], source));
  }
  study->SetSeries(ArrayFrom(series).get());
  return study;
}

}  // namespace

ComPtr<IDicomDirImpl> NewService() {
  return NewObject<IDicomDirImpl>(CLSID_DicomDirImpl, IID_IDicomDirImpl);
}
ComPtr<IDicomDirPatient> NewPatient() {
  return NewObject<IDicomDirPatient>(CLSID_DicomDirPatient, IID_IDicomDirPatient);
}
ComPtr<IDicomDirStudy> NewStudy() {
  return NewObject<IDicomDirStudy>(CLSID_DicomDirStudy, IID_IDicomDirStudy);
}
ComPtr<IDicomDirSeries> NewSeries() {
  return NewObject<IDicomDirSeries>(CLSID_DicomDirSeries, IID_IDicomDirSeries);
}
ComPtr<IDicomDirImage> NewImage() {
  return NewObject<IDicomDirImage>(CLSID_DicomDirImage, IID_IDicomDirImage);
}

BString Bstr(std::u16string_view text) { return BString::Copy(text); }
BString Bstr(const std::string& narrowText) { return BString::Copy(ToWide(narrowText)); }

void ObjectsReleasedTest::TearDown() {
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "an object of the component outlived its test";
}

SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound) {
  std::vector<ComPtr<IDicomDirPatient>> patients;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    auto patient = NewPatient();
    patient->SetDicomPatName(Bstr("Doe^" + number).get());
    patient->SetPatientID(Bstr("ID" + number).get());
    patient->SetPatientSex(Bstr(u"F").get());
    std::vector<ComPtr<IDicomDirStudy>> studies;
    for (std::size_t j = 0; j < shape[i].size(); ++j) {
      const int studyNumber = static_cast<int>(j) + 1;
      studies.push_back(MakeStudy("1.2.3." + number + "." + std::to_string(studyNumber),
                                  studyNumber, shape[i][j], imageSource));
    }
    patient->SetStudies(ArrayFrom(studies).get());
    patients.push_back(std::move(patient));
  }
  return ArrayFrom(patients, lowerBound);
}

std::string CreateDiscThroughService(const std::string& folder, SAFEARRAY* tree) {
  const ComPtr<IDicomDirImpl> service = NewService();
  BString output;
  EXPECT_EQ(service->CreateDicomDir(Bstr(folder).get(), Bstr(u"Disc").get(), tree, output.Receive(),
                                    VARIANT_FALSE, nullptr),
            S_OK);
  return folder + "/Disc/DICOMDIR";
}

std::string RunTool(const std::string& commandLine) {
  std::FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
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

SettingsHelper MakeSettings(const std::string& folder, const char* aeTitle) {
  const std::string path = folder + "/settings.config";
  WriteWholeFile(path, aeTitle == nullptr
                           ? std::string("<add key=\"Other\" value=\"X\"/>")
                           : "<add key=\"AeTitle\" value=\"" + std::string(aeTitle) + "\"/>");
  SettingsHelper settings;
  settings.Load(path);
  return settings;
}

std::uint32_t ULOf(const std::string& value) {
  std::uint32_t number = 0;
  for (std::size_t i = value.size(); i-- > 0;) {
    number = number << 8 | static_cast<std::uint8_t>(value[i]);
  }
  return number;
}

namespace {

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
      DirectoryRecord& record = file.records.emplace_back();
      record.offset = static_cast<std::uint32_t>(at);
      ReadElements(file, at + 8, at + 8 + itemLength, record.values);
      at += 8 + itemLength;
    }
  }
}

}  // namespace

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
  const bool longForm = code == "OB" || code == "SQ";
  const auto length = static_cast<std::uint32_t>(value.size());
  return LittleEndian(group, 2) + LittleEndian(element, 2) + code +
         (longForm ? std::string(2, '\0') + LittleEndian(length, 4) : LittleEndian(length, 2)) +
         value;
}

std::string BytesOf(const DicomEngine::BufferWriter& writer) {
  return std::string(reinterpret_cast<const char*>(writer.GetBuffer()), writer.GetCursor());
}

int ScriptedFileSystem::MakeDirectory(const std::string& path) {
  return FileSystem::Posix().MakeDirectory(path);
}

int ScriptedFileSystem::CopyFileNoReplace(const std::string& source, const std::string& target) {
  if (copies_++ == failAt_) return error_;
  return FileSystem::Posix().CopyFileNoReplace(source, target);
}

}  // namespace halvorine
