#include "writing/DiscBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"
#include "TempFolder.h"
#include "platform/ModulePath.h"
#include "reading/ReadingTestSupport.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

const std::string kImage("image bytes\0\xFF", 13);

class DiscBuilderTest : public ServiceTest {
 protected:
  void SetUp() override { WriteWholeFile(source_, kImage); }

  // Builds the disc "Disc" of a tree below directory; the failure's text, or "nothing raised".
  // The test's own AeTitle stands in for the settings file that the process loads by that name.
  std::string Build(const SafeArrayPtr& patients, const std::string& directory,
                    VARIANT_BOOL copyViewer = VARIANT_FALSE) {
    const SettingsAccess settings = {
        [](const std::string& name) { EXPECT_EQ(name, "LumbrelUI.exe.config"); },
        [](const std::string& key) {
          EXPECT_EQ(key, "AeTitle");
          return std::string("HALVORINE");
        }};
    BString output;
    const std::string message = RaisedMessage([&] {
      DiscBuilder(FileSystem::Posix(), settings)
          .BuildDisc(Bstr(directory).get(), Bstr("Disc").get(), patients.get(), output.Receive(),
                     copyViewer, nullptr);
    });
    EXPECT_EQ(ToNarrow(output.get()), disc_);
    return message;
  }

  TempFolder temp_;
  const std::string source_ = temp_.Path("image");
  const std::string disc_ = temp_.Path("Disc");
};

// P1 { S1 { E1 { I1 I2 } E2 { } } S2 { } } P2 { S1 { E1 { I1 } } }: the folders, the copies, and a
// load that gives back every field that the objects carried, each image at its copy. The links
// are checked one by one against dcmdump's offsets in DiscBuilderDcmtkTest.
TEST_F(DiscBuilderTest, LaysOutTheDiscAndALoadGivesBackTheTree) {
  const SafeArrayPtr tree = MakeTree({{{2, 0}, {}}, {{1}}}, source_);
  ASSERT_EQ(Build(tree, temp_.Path()), "nothing raised");
  const std::string se = "DICOM/PA0/ST0/SE0";
  const std::vector<std::string> images = {se + "/IM0", se + "/IM1", "DICOM/PA1/ST0/SE0/IM0"};
  EXPECT_EQ(Entries(disc_), (std::vector<std::string>{"DICOM", "DICOM/PA0", "DICOM/PA0/ST0", se,
                                                      images[0], images[1], "DICOM/PA0/ST0/SE1",
                                                      "DICOM/PA0/ST1", "DICOM/PA1", "DICOM/PA1/ST0",
                                                      "DICOM/PA1/ST0/SE0", images[2], "DICOMDIR"}));
  std::string expected = testing::LoadedTree(tree.get());
  for (const std::string& image : images) {
    EXPECT_EQ(ReadWholeFile(disc_ + "/" + image), kImage);
    expected.replace(expected.find(source_ + "|"), source_.size(), disc_ + "/" + image);
  }
  EXPECT_EQ(testing::LoadTree(disc_), expected);
}

// The header alone: no links and an empty record sequence.
TEST_F(DiscBuilderTest, AnEmptyArrayGivesTheHeaderAlone) {
  const std::string tail = Encoded(0x0004, 0x1200, "UL", LittleEndian(0, 4)) +
                           Encoded(0x0004, 0x1202, "UL", LittleEndian(0, 4)) +
                           Encoded(0x0004, 0x1212, "US", LittleEndian(0, 2)) +
                           Encoded(0x0004, 0x1220, "SQ", "");
  for (const std::string& directory : {temp_.Path(), temp_.Path() + "/"}) {
    SCOPED_TRACE(directory);
    fs::remove_all(disc_);
    ASSERT_EQ(Build(MakeTree({}, source_), directory), "nothing raised");
    EXPECT_EQ(Entries(disc_), std::vector<std::string>{"DICOMDIR"});
    EXPECT_TRUE(ReadWholeFile(disc_ + "/DICOMDIR").ends_with(tail));
  }
}

// Nothing is rolled back, and no DICOMDIR is written; files that stood before stay as they were.
TEST_F(DiscBuilderTest, FailuresStopAtTheFaultAndKeepWhatStands) {
  const std::string kIndex =
      " doesn't fit the name of a PA folder or file, which holds the indices 0 to 9999.";
  const std::string kCopy = "Failed to copy the image files.";
  const std::string se = "DICOM/PA0/ST0/SE0";
  const std::vector<std::string> kSeries = {"DICOM", "DICOM/PA0", "DICOM/PA0/ST0", se};
  const struct {
    TreeShape shape;
    LONG lower;
    std::string source;  // empty: the test's image
    std::string message;
    std::vector<std::string> entries;
    std::vector<std::string> older = {};  // made before the build
  } cases[] = {
      {{{{1}}}, 0, "/" + std::string(2046, 'a'), kCopy, kSeries},
      {{{{1}}},
       0,
       "/" + std::string(2047, 'a'),
       "The image file name of 2048 characters is too long: at most 2047 are allowed.",
       kSeries},
      {{{{3}}},
       0,
       "",
       kCopy,
       {"DICOM", "DICOM/PA0", "DICOM/PA0/ST0", se, se + "/IM0", se + "/IM1", "DICOMDIR"},
       {se + "/IM1", "DICOMDIR"}},
      {{{}, {}}, 9999, "", "The index 10000" + kIndex, {"DICOM", "DICOM/PA9999"}},
      {{{}}, -1, "", "The index -1" + kIndex, {"DICOM"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    fs::remove_all(disc_);
    for (const std::string& file : c.older) {
      fs::create_directories(fs::path(disc_ + "/" + file).parent_path());
      WriteWholeFile(disc_ + "/" + file, "older");
    }
    const std::string message =
        Build(MakeTree(c.shape, c.source.empty() ? source_ : c.source, c.lower), temp_.Path());
    EXPECT_TRUE(IsPlaced(message, c.message, "DicomDirImpl")) << message;
    EXPECT_EQ(Entries(disc_), c.entries);
    for (const std::string& file : c.older) EXPECT_EQ(ReadWholeFile(disc_ + "/" + file), "older");
  }
  fs::remove_all(disc_);
  EXPECT_TRUE(IsPlaced(Build(SafeArrayPtr(SafeArrayCreateVector(VT_UNKNOWN, 0, 1)), temp_.Path()),
                       "The patients array holds a NULL element at index 0.", "DicomDirImpl"));
  EXPECT_EQ(Entries(disc_), (std::vector<std::string>{"DICOM", "DICOM/PA0"}));
}

// The files come from the folder of the host's executable, where there are none beside this
// test's; they come after the DICOMDIR.
TEST_F(DiscBuilderTest, TheViewerPackageOnlyForExactlyTrue) {
  FillViewerFileList();
  EXPECT_EQ(Build(MakeTree({}, source_), temp_.Path(), 1), "nothing raised");
  fs::remove_all(disc_);
  const std::string message = Build(MakeTree({}, source_), temp_.Path(), VARIANT_TRUE);
  EmptyViewerFileList();
  EXPECT_NE(message.find("from:" + GetModuleDirectory() + "Lumbrel.exe "), std::string::npos)
      << message;
  EXPECT_TRUE(fs::exists(disc_ + "/DICOMDIR"));
}

}  // namespace
}  // namespace halvorine
