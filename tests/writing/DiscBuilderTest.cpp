#include "writing/DiscBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"
#include "TempFolder.h"
#include "platform/ModulePath.h"
#include "support/SettingsHelper.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

const std::string kImage("image bytes\0\xFF", 13);

std::vector<std::string> Entries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    names.push_back(fs::relative(entry.path(), folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class DiscBuilderTest : public ObjectsReleasedTest {
 protected:
  void SetUp() override {
    WriteWholeFile(source_, kImage);
    SetAeTitle("<add key=\"AeTitle\" value=\"HALVORINE\"/>");
  }
  void SetAeTitle(const std::string& table) {
    WriteWholeFile(temp_.Path("settings.config"), table);
    settings_ = SettingsHelper();
    settings_.Load(temp_.Path("settings.config"));
  }

  // Builds the disc "Disc" of a tree below directory; the failure's text, or "nothing raised".
  // The test's own settings table stands in for the one that the process loads by that name.
  std::string Build(const SafeArrayPtr& patients, const std::string& directory,
                    FileSystem& fileSystem = FileSystem::Posix(),
                    VARIANT_BOOL copyViewer = VARIANT_FALSE) {
    const SettingsAccess settings = {
        [](const std::string& name) { EXPECT_EQ(name, "LumbrelUI.exe.config"); },
        [this](const std::string& key) { return settings_.Get(key); }};
    return RaisedMessage([&] {
      DiscBuilder(fileSystem, settings)
          .BuildDisc(Bstr(directory).get(), Bstr("Disc").get(), patients.get(), output_.Receive(),
                     copyViewer, nullptr);
    });
  }

  TempFolder temp_;
  const std::string source_ = temp_.Path("image");
  const std::string disc_ = temp_.Path("Disc");
  SettingsHelper settings_;
  BString output_;
};

// P1 { S1 { E1 { I1 I2 } E2 { } } S2 { } } P2 { }, in this order in the file.
TEST_F(DiscBuilderTest, LaysOutAndLinksEveryRecord) {
  for (const LONG lower : {0, 5}) {
    SCOPED_TRACE(lower);
    fs::remove_all(disc_);
    ASSERT_EQ(Build(MakeTree({{{2, 0}, {}}, {}}, source_, lower), temp_.Path()), "nothing raised");
    EXPECT_EQ(ToNarrow(output_.get()), disc_);
    const std::string pa = "DICOM/PA" + std::to_string(lower);
    std::vector<std::string> expectedEntries = {"DICOM", "DICOMDIR",
                                                "DICOM/PA" + std::to_string(lower + 1)};
    for (const char* entry :
         {"", "/ST0", "/ST0/SE0", "/ST0/SE0/IM0", "/ST0/SE0/IM1", "/ST0/SE1", "/ST1"}) {
      expectedEntries.push_back(pa + entry);
    }
    std::sort(expectedEntries.begin(), expectedEntries.end());
    EXPECT_EQ(Entries(disc_), expectedEntries);
    EXPECT_EQ(ReadWholeFile(disc_ + "/" + pa + "/ST0/SE0/IM0"), kImage);
    EXPECT_EQ(ReadWholeFile(disc_ + "/" + pa + "/ST0/SE0/IM1"), kImage);

    const DirectoryFile file = ReadDirectoryFile(disc_ + "/DICOMDIR");
    const struct {
      const char* type;
      int next;   // the record that (0004,1400) names, -1 for 0
      int lower;  // the record that (0004,1420) names
    } expected[] = {{"PATIENT ", 7, 1}, {"STUDY ", 6, 2},    {"SERIES", 5, 3},
                    {"IMAGE ", 4, -1},  {"IMAGE ", -1, -1},  {"SERIES", -1, -1},
                    {"STUDY ", -1, -1}, {"PATIENT ", -1, -1}};
    ASSERT_EQ(file.records.size(), std::size(expected));
    const auto offsetOf = [&](int record) { return record < 0 ? 0 : file.records[record].offset; };
    for (std::size_t i = 0; i < std::size(expected); ++i) {
      const ElementValues& values = file.records[i].values;
      SCOPED_TRACE(i);
      EXPECT_EQ(values.at(Tag(0x0004, 0x1430)), expected[i].type);
      EXPECT_EQ(ULOf(values.at(Tag(0x0004, 0x1400))), offsetOf(expected[i].next));
      EXPECT_EQ(ULOf(values.at(Tag(0x0004, 0x1420))), offsetOf(expected[i].lower));
    }
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1200))), file.firstRecordOffset);
    EXPECT_EQ(file.records[0].offset, file.firstRecordOffset);
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1202))), file.records[7].offset);
    EXPECT_EQ(file.sequenceLength, file.bytes.size() - file.firstRecordOffset);
    const std::string id = "DICOM\\PA" + std::to_string(lower) + "\\ST0\\SE0\\IM";
    EXPECT_EQ(file.records[3].values.at(Tag(0x0004, 0x1500)), id + std::string("0\0", 2));
    EXPECT_EQ(file.records[4].values.at(Tag(0x0004, 0x1500)), id + std::string("1\0", 2));
  }
}

TEST_F(DiscBuilderTest, AnEmptyArrayGivesTheHeaderAlone) {
  for (const std::string& directory : {temp_.Path(), temp_.Path() + "/"}) {
    SCOPED_TRACE(directory);
    fs::remove_all(disc_);
    ASSERT_EQ(Build(MakeTree({}, source_), directory), "nothing raised");
    EXPECT_EQ(ToNarrow(output_.get()), disc_);
    EXPECT_EQ(Entries(disc_), std::vector<std::string>{"DICOMDIR"});
    const DirectoryFile file = ReadDirectoryFile(disc_ + "/DICOMDIR");
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1200))), 0u);
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1202))), 0u);
    EXPECT_EQ(file.sequenceLength, 0u);
    EXPECT_EQ(file.firstRecordOffset, file.bytes.size());
  }
}

// Nothing is rolled back, and no DICOMDIR is written.
TEST_F(DiscBuilderTest, FailuresStopAtTheFaultAndKeepWhatStands) {
  const std::string kIndex =
      " doesn't fit the name of a PA folder or file, which holds the "
      "indices 0 to 9999.";
  const std::string kCopy = "Failed to copy the image files.";
  const std::vector<std::string> kSeries = {"DICOM", "DICOM/PA0", "DICOM/PA0/ST0",
                                            "DICOM/PA0/ST0/SE0"};
  const struct {
    TreeShape shape;
    LONG lower;
    std::string source;  // empty: the test's image
    int failingCopy;     // of the ScriptedFileSystem, with ENOSPC
    std::string message;
    std::vector<std::string> entries;
  } cases[] = {
      {{{{1}}}, 0, "/no/such/image", -1, kCopy, kSeries},
      {{{{3}}},
       0,
       "",
       1,
       kCopy,
       {"DICOM", "DICOM/PA0", "DICOM/PA0/ST0", "DICOM/PA0/ST0/SE0", "DICOM/PA0/ST0/SE0/IM0"}},
      {{{{1}}}, 0, "/" + std::string(2046, 'a'), -1, kCopy, kSeries},
      {{{{1}}},
       0,
       "/" + std::string(2047, 'a'),
       -1,
       "The image file name of 2048 characters is too long: at most 2047 are allowed.",
       kSeries},
      {{{}, {}}, 9999, "", -1, "The index 10000" + kIndex, {"DICOM", "DICOM/PA9999"}},
      {{{}}, -1, "", -1, "The index -1" + kIndex, {"DICOM"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    fs::remove_all(disc_);
    ScriptedFileSystem fileSystem(c.failingCopy, ENOSPC);
    const std::string message =
        Build(MakeTree(c.shape, c.source.empty() ? source_ : c.source, c.lower), temp_.Path(),
              fileSystem);
    EXPECT_TRUE(IsPlaced(message, c.message, "DicomDirImpl")) << message;
    EXPECT_EQ(ToNarrow(output_.get()), disc_);
    EXPECT_EQ(Entries(disc_), c.entries);
  }
  // A null element, and a second disc of the same name, which replaces no file.
  fs::remove_all(disc_);
  EXPECT_TRUE(IsPlaced(Build(SafeArrayPtr(SafeArrayCreateVector(VT_UNKNOWN, 0, 1)), temp_.Path()),
                       "The patients array holds a NULL element at index 0.", "DicomDirImpl"));
  EXPECT_EQ(Entries(disc_), (std::vector<std::string>{"DICOM", "DICOM/PA0"}));
  fs::remove_all(disc_);
  ASSERT_EQ(Build(MakeTree({{{1}}}, source_), temp_.Path()), "nothing raised");
  const std::string first = ReadWholeFile(disc_ + "/DICOMDIR");
  EXPECT_TRUE(IsPlaced(Build(MakeTree({{{1}}}, source_), temp_.Path()), kCopy, "DicomDirImpl"));
  EXPECT_EQ(ReadWholeFile(disc_ + "/DICOMDIR"), first);
}

TEST_F(DiscBuilderTest, WithoutAeTitleNoDicomDirIsWritten) {
  SetAeTitle("<add key=\"Other\" value=\"X\"/>");
  const std::string message = Build(MakeTree({}, source_), temp_.Path());
  EXPECT_TRUE(IsPlaced(message, "Failed to read setting.", "DicomDirImpl")) << message;
  EXPECT_EQ(ToNarrow(output_.get()), disc_);
  EXPECT_TRUE(Entries(disc_).empty());
}

// The files come from the folder of the host's executable; there are none beside this test's.
TEST_F(DiscBuilderTest, TheViewerPackageOnlyForExactlyTrue) {
  FillViewerFileList();
  EXPECT_EQ(Build(MakeTree({}, source_), temp_.Path(), FileSystem::Posix(), 1), "nothing raised");
  fs::remove_all(disc_);
  const std::string message =
      Build(MakeTree({}, source_), temp_.Path(), FileSystem::Posix(), VARIANT_TRUE);
  EXPECT_TRUE(IsPlaced(message,
                       "Failed to copy the Lumbrel file \r\nfrom:" + GetModuleDirectory() +
                           "Lumbrel.exe \r\nto " + disc_ + "/Lumbrel.exe\r\nWindows last error=2",
                       "DicomDirImpl"))
      << message;
  EXPECT_TRUE(fs::exists(disc_ + "/DICOMDIR")) << "the viewer comes last";
  EmptyViewerFileList();
}

// The fields that both a write and a load carry, one line per object in the walk's order, texts
// without the blank that pads them to even length; an image by its file's content.
template <class Interface>
std::string Text(IUnknown* object, HRESULT (Interface::*getter)(BSTR*)) {
  BString text;
  (static_cast<Interface*>(object)->*getter)(text.Receive());
  std::string narrow = ToNarrow(text.get());
  return narrow.erase(narrow.find_last_not_of(' ') + 1) + "|";
}

void Describe(SAFEARRAY* array, int level, std::vector<std::string>& lines) {
  ForEachElement(array, [&](LONG, IUnknown* o) {
    SafeArrayPtr children;
    DATE date = 0.0;
    SHORT series = 0;
    LONGLONG instance = 0;
    if (level == 0) {
      lines.push_back(Text(o, &IDicomDirPatient::GetDicomPatName) +
                      Text(o, &IDicomDirPatient::GetPatientID));
      static_cast<IDicomDirPatient*>(o)->GetStudies(children.Receive());
    } else if (level == 1) {
      static_cast<IDicomDirStudy*>(o)->GetStudyDate(&date);
      lines.push_back(
          Text(o, &IDicomDirStudy::GetStudyInstUID) + Text(o, &IDicomDirStudy::GetStudyID) +
          Text(o, &IDicomDirStudy::GetAccessionNr) + Text(o, &IDicomDirStudy::GetStudyDescription) +
          Text(o, &IDicomDirStudy::GetInstitution) + std::to_string(date));
      static_cast<IDicomDirStudy*>(o)->GetSeries(children.Receive());
    } else if (level == 2) {
      static_cast<IDicomDirSeries*>(o)->GetSeriesNumber(&series);
      lines.push_back(Text(o, &IDicomDirSeries::GetModality) +
                      Text(o, &IDicomDirSeries::GetSeriesInstUID) + std::to_string(series));
      static_cast<IDicomDirSeries*>(o)->GetImages(children.Receive());
    } else {
      static_cast<IDicomDirImage*>(o)->GetInstanceNumber(&instance);
      std::string file = Text(o, &IDicomDirImage::GetImageFilename);
      lines.push_back(Text(o, &IDicomDirImage::GetSOPClassUID) +
                      Text(o, &IDicomDirImage::GetSOPInstanceUID) + std::to_string(instance) +
                      ReadWholeFile(file.erase(file.size() - 1)));
    }
    Describe(children.get(), level + 1, lines);
  });
}

// 2 patients, 3 studies, 4 series and 10 images, written and loaded again through the service.
TEST_F(DiscBuilderTest, ALoadGivesBackWhatTheWriteCarried) {
  const SafeArrayPtr tree = MakeTree({{{3, 2}, {1}}, {{4}}}, source_);
  CreateDiscThroughService(temp_.Path(), tree.get());
  SafeArrayPtr loaded;
  ASSERT_EQ(HALVORINE_NEW(DicomDirImpl)->LoadDicomDir(Bstr(disc_).get(), loaded.Receive()), S_OK);
  std::vector<std::string> written;
  std::vector<std::string> read;
  Describe(tree.get(), 0, written);
  Describe(loaded.get(), 0, read);
  EXPECT_EQ(written.size(), 2u + 3u + 4u + 10u);
  EXPECT_EQ(read, written);
}

}  // namespace
}  // namespace halvorine
