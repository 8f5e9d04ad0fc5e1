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
#include "platform/ComPtr.h"
#include "platform/ModulePath.h"
#include "platform/SafeArrayPtr.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

constexpr char kImage[] = "image bytes\0\xFF";

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
  void SetUp() override { WriteWholeFile(source_, std::string(kImage, sizeof kImage)); }

  // Builds the disc "Disc" below directory; the failure's text, or "nothing raised".
  std::string Build(SAFEARRAY* patients, const std::string& directory,
                    FileSystem& fileSystem = FileSystem::Posix(),
                    VARIANT_BOOL copyViewer = VARIANT_FALSE) {
    return RaisedMessage([&] {
      DiscBuilder(fileSystem, Settings())
          .BuildDisc(Bstr(directory).get(), Bstr(u"Disc").get(), patients, output_.Receive(),
                     copyViewer, nullptr);
    });
  }
  // The test's own table stands in for the one that the process loads by that name.
  SettingsAccess Settings() {
    return {[](const std::string& name) { EXPECT_EQ(name, "LumbrelUI.exe.config"); },
            [this](const std::string& key) { return settings_.Get(key); }};
  }
  std::string Output() const { return ToNarrow(output_.get()); }

  TempFolder temp_;
  const std::string source_ = temp_.Path("image");
  const std::string disc_ = temp_.Path("Disc");
  SettingsHelper settings_ = MakeSettings(temp_.Path(), "HALVORINE");
  BString output_;
};

class DiscBuilderBounds : public DiscBuilderTest, public testing::WithParamInterface<LONG> {};

// P1 { S1 { E1 { I1 I2 } E2 { } } S2 { } } P2 { }, in this order in the file.
TEST_P(DiscBuilderBounds, LaysOutAndLinksEveryRecord) {
  const LONG lower = GetParam();
  const SafeArrayPtr tree = MakeTree({{{2, 0}, {}}, {}}, source_, lower);
  ASSERT_EQ(Build(tree.get(), temp_.Path()), "nothing raised");
  EXPECT_EQ(Output(), disc_);
  const std::string pa = "DICOM/PA" + std::to_string(lower);
  const std::string second = "DICOM/PA" + std::to_string(lower + 1);
  std::vector<std::string> expectedEntries = {"DICOM",
                                              "DICOMDIR",
                                              pa,
                                              pa + "/ST0",
                                              pa + "/ST0/SE0",
                                              pa + "/ST0/SE0/IM0",
                                              pa + "/ST0/SE0/IM1",
                                              pa + "/ST0/SE1",
                                              pa + "/ST1",
                                              second};
  std::sort(expectedEntries.begin(), expectedEntries.end());
  EXPECT_EQ(Entries(disc_), expectedEntries);
  for (const char* image : {"/ST0/SE0/IM0", "/ST0/SE0/IM1"}) {
    EXPECT_EQ(ReadWholeFile(disc_ + "/" + pa + image), std::string(kImage, sizeof kImage));
  }

  const DirectoryFile file = ReadDirectoryFile(disc_ + "/DICOMDIR");
  const struct {
    const char* type;
    int next;   // the record that (0004,1400) names, -1 for 0
    int lower;  // the record that (0004,1420) names
  } expected[] = {{"PATIENT ", 7, 1}, {"STUDY ", 6, 2},   {"SERIES", 5, 3},   {"IMAGE ", 4, -1},
                  {"IMAGE ", -1, -1}, {"SERIES", -1, -1}, {"STUDY ", -1, -1}, {"PATIENT ", -1, -1}};
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

INSTANTIATE_TEST_SUITE_P(LowerBounds, DiscBuilderBounds, testing::Values(0, 5));

TEST_F(DiscBuilderTest, AnEmptyArrayGivesTheHeaderAlone) {
  for (const std::string& directory : {temp_.Path(), temp_.Path() + "/"}) {
    SCOPED_TRACE(directory);
    fs::remove_all(disc_);
    ASSERT_EQ(Build(MakeTree({}, source_).get(), directory), "nothing raised");
    EXPECT_EQ(Output(), disc_);
    EXPECT_EQ(Entries(disc_), std::vector<std::string>{"DICOMDIR"});
    const DirectoryFile file = ReadDirectoryFile(disc_ + "/DICOMDIR");
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1200))), 0u);
    EXPECT_EQ(ULOf(file.header.at(Tag(0x0004, 0x1202))), 0u);
    EXPECT_EQ(file.sequenceLength, 0u);
    EXPECT_EQ(file.firstRecordOffset, file.bytes.size());
  }
}

struct FailureCase {
  const char* name;
  TreeShape shape;
  LONG lower;
  std::string source;  // empty: the test's image
  int failingCopy;     // of the ScriptedFileSystem, with ENOSPC
  std::string message;
  std::vector<std::string> entries;
};

void PrintTo(const FailureCase& c, std::ostream* os) { *os << c.name; }

class DiscBuilderFailures : public DiscBuilderTest,
                            public testing::WithParamInterface<FailureCase> {};

// Nothing is rolled back, and no DICOMDIR is written.
TEST_P(DiscBuilderFailures, StopAtTheFaultAndKeepWhatStands) {
  const FailureCase& c = GetParam();
  ScriptedFileSystem fileSystem(c.failingCopy, ENOSPC);
  const std::string source = c.source.empty() ? source_ : c.source;
  const std::string message =
      Build(MakeTree(c.shape, source, c.lower).get(), temp_.Path(), fileSystem);
  EXPECT_TRUE(IsPlaced(message, c.message, "DicomDirImpl")) << message;
  EXPECT_EQ(Output(), disc_);
  EXPECT_EQ(Entries(disc_), c.entries);
}

const std::string kIm = "DICOM/PA0/ST0/SE0/IM";
const std::vector<std::string> kSeriesFolders = {"DICOM", "DICOM/PA0", "DICOM/PA0/ST0",
                                                 "DICOM/PA0/ST0/SE0"};

std::vector<std::string> With(std::vector<std::string> entries, std::vector<std::string> more) {
  entries.insert(entries.end(), more.begin(), more.end());
  return entries;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DiscBuilderFailures,
    testing::Values(
        FailureCase{"MissingSource",
                    {{{1}}},
                    0,
                    "/no/such/image",
                    -1,
                    "Failed to copy the image files.",
                    kSeriesFolders},
        FailureCase{"FullDisc",
                    {{{3}}},
                    0,
                    "",
                    1,
                    "Failed to copy the image files.",
                    With(kSeriesFolders, {kIm + "0"})},
        FailureCase{"SourcePathAtTheLimit",
                    {{{1}}},
                    0,
                    "/" + std::string(2046, 'a'),
                    -1,
                    "Failed to copy the image files.",
                    kSeriesFolders},
        FailureCase{"SourcePathTooLong",
                    {{{1}}},
                    0,
                    "/" + std::string(2047, 'a'),
                    -1,
                    "The image file name of 2048 characters is too long: at most 2047 are "
                    "allowed.",
                    kSeriesFolders},
        FailureCase{"IndexBeyondFourDigits",
                    {{}, {}},
                    9999,
                    "",
                    -1,
                    "The index 10000 doesn't fit the name of a PA folder or file, which holds "
                    "the indices 0 to 9999.",
                    {"DICOM", "DICOM/PA9999"}},
        FailureCase{"NegativeIndex",
                    {{}},
                    -1,
                    "",
                    -1,
                    "The index -1 doesn't fit the name of a PA folder or file, which holds the "
                    "indices 0 to 9999.",
                    {"DICOM"}}),
    [](const testing::TestParamInfo<FailureCase>& param) { return std::string(param.param.name); });

TEST_F(DiscBuilderTest, ANullElementEndsTheWalk) {
  const SafeArrayPtr patients(SafeArrayCreateVector(VT_UNKNOWN, 0, 1));
  EXPECT_TRUE(IsPlaced(Build(patients.get(), temp_.Path()),
                       "The patients array holds a NULL element at index 0.", "DicomDirImpl"));
  EXPECT_EQ(Entries(disc_), (std::vector<std::string>{"DICOM", "DICOM/PA0"}));
}

TEST_F(DiscBuilderTest, ASecondDiscOfTheSameNameReplacesNoFile) {
  ASSERT_EQ(Build(MakeTree({{{1}}}, source_).get(), temp_.Path()), "nothing raised");
  const std::string first = ReadWholeFile(disc_ + "/DICOMDIR");
  EXPECT_TRUE(IsPlaced(Build(MakeTree({{{1}}}, source_).get(), temp_.Path()),
                       "Failed to copy the image files.", "DicomDirImpl"));
  EXPECT_EQ(ReadWholeFile(disc_ + "/DICOMDIR"), first);
}

TEST_F(DiscBuilderTest, WithoutAeTitleNoDicomDirIsWritten) {
  settings_ = MakeSettings(temp_.MakeFolder("other"), nullptr);
  const std::string message = Build(MakeTree({}, source_).get(), temp_.Path());
  EXPECT_TRUE(IsPlaced(message, "Failed to read setting.", "DicomDirImpl")) << message;
  EXPECT_EQ(Output(), disc_);
  EXPECT_TRUE(Entries(disc_).empty());
}

// The files come from the folder of the host's executable; there are none beside this test's.
TEST_F(DiscBuilderTest, TheViewerPackageOnlyForExactlyTrue) {
  FillViewerFileList();
  EXPECT_EQ(Build(MakeTree({}, source_).get(), temp_.Path(), FileSystem::Posix(), 1),
            "nothing raised");
  fs::remove_all(disc_);
  const std::string message =
      Build(MakeTree({}, source_).get(), temp_.Path(), FileSystem::Posix(), VARIANT_TRUE);
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
class TreeDescription {
 public:
  explicit TreeDescription(SAFEARRAY* patients) {
    ForEach<IDicomDirPatient>(patients, IID_IDicomDirPatient, [&](IDicomDirPatient& patient) {
      Add({Text(patient, &IDicomDirPatient::GetDicomPatName),
           Text(patient, &IDicomDirPatient::GetPatientID)});
      SafeArrayPtr studies;
      patient.GetStudies(studies.Receive());
      ForEach<IDicomDirStudy>(studies.get(), IID_IDicomDirStudy, [&](IDicomDirStudy& study) {
        DATE date = 0.0;
        study.GetStudyDate(&date);
        Add({Text(study, &IDicomDirStudy::GetStudyInstUID),
             Text(study, &IDicomDirStudy::GetStudyID), Text(study, &IDicomDirStudy::GetAccessionNr),
             Text(study, &IDicomDirStudy::GetStudyDescription),
             Text(study, &IDicomDirStudy::GetInstitution), std::to_string(date)});
        SafeArrayPtr series;
        study.GetSeries(series.Receive());
        ForEach<IDicomDirSeries>(series.get(), IID_IDicomDirSeries, [&](IDicomDirSeries& one) {
          SHORT number = 0;
          one.GetSeriesNumber(&number);
          Add({Text(one, &IDicomDirSeries::GetModality),
               Text(one, &IDicomDirSeries::GetSeriesInstUID), std::to_string(number)});
          SafeArrayPtr images;
          one.GetImages(images.Receive());
          ForEach<IDicomDirImage>(images.get(), IID_IDicomDirImage, [&](IDicomDirImage& image) {
            LONGLONG instance = 0;
            image.GetInstanceNumber(&instance);
            Add({Text(image, &IDicomDirImage::GetSOPClassUID),
                 Text(image, &IDicomDirImage::GetSOPInstanceUID), std::to_string(instance),
                 ReadWholeFile(Text(image, &IDicomDirImage::GetImageFilename))});
          });
        });
      });
    });
  }

  std::vector<std::string> lines;

 private:
  template <class Interface, class Visit>
  static void ForEach(SAFEARRAY* array, REFIID iid, Visit visit) {
    LONG lower = 0;
    LONG upper = -1;
    if (array != nullptr) {
      SafeArrayGetLBound(array, 1, &lower);
      SafeArrayGetUBound(array, 1, &upper);
    }
    for (LONG index = lower; index <= upper; ++index) {
      ComPtr<IUnknown> element;
      ComPtr<Interface> typed;
      SafeArrayGetElement(array, &index, element.Receive());
      ASSERT_EQ(element->QueryInterface(iid, reinterpret_cast<void**>(typed.Receive())), S_OK);
      visit(*typed.get());
    }
  }

  template <class Object>
  static std::string Text(Object& object, HRESULT (Object::*getter)(BSTR*)) {
    BString text;
    (object.*getter)(text.Receive());
    std::string narrow = ToNarrow(text.get());
    return narrow.erase(narrow.find_last_not_of(' ') + 1);
  }

  void Add(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) line += field + "|";
    lines.push_back(line);
  }
};

// 2 patients, 3 studies, 4 series and 10 images, written and loaded again through the service.
TEST_F(DiscBuilderTest, ALoadGivesBackWhatTheWriteCarried) {
  const SafeArrayPtr tree = MakeTree({{{3, 2}, {1}}, {{4}}}, source_);
  CreateDiscThroughService(temp_.Path(), tree.get());
  SafeArrayPtr loaded;
  ASSERT_EQ(NewService()->LoadDicomDir(Bstr(disc_).get(), loaded.Receive()), S_OK);
  const TreeDescription written(tree.get());
  EXPECT_EQ(written.lines.size(), 2u + 3u + 4u + 10u);
  EXPECT_EQ(TreeDescription(loaded.get()).lines, written.lines);
}

}  // namespace
}  // namespace halvorine
