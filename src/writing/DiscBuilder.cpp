#include "writing/DiscBuilder.h"

#include <cerrno>
#include <new>
#include <utility>

#include "platform/BString.h"
#include "platform/ModulePath.h"
#include "platform/SafeArrayPtr.h"
#include "support/SettingsHelper.h"
#include "support/TextConversion.h"
#include "writing/OffsetLinker.h"
#include "writing/RecordBuilder.h"
#include "writing/ViewerPackage.h"
#include "writing/WritingCommon.h"

namespace halvorine {
namespace {

using DicomEngine::OffsetMap;

constexpr char kSettingsFileName[] = "LumbrelUI.exe.config";
constexpr char kDirectoryFileName[] = "DICOMDIR";
constexpr char kImageTreeName[] = "DICOM";
constexpr std::int32_t kHighestIndex = 9999;
constexpr std::size_t kSourcePathLimit = 2048;
constexpr std::uint16_t kDirectoryGroup = 0x0004;

}  // namespace

SettingsAccess SettingsAccess::Process() {
  return {&SettingsHelper::LoadSettings, &SettingsHelper::GetSetting};
}

DiscBuilder::DiscBuilder(FileSystem& fileSystem, SettingsAccess settings)
    : fileSystem_(fileSystem), settings_(std::move(settings)) {}

void DiscBuilder::BuildDisc(BSTR bstrDirectoryName, BSTR bstrTitle, SAFEARRAY* pPatients,
                            BSTR* pbstrOutputDirectory, VARIANT_BOOL bCopyViewer,
                            BSTR bstrCulture) {
  settings_.load(kSettingsFileName);
  outputFolder_ = CreateOutputFolder(bstrDirectoryName, bstrTitle, pbstrOutputDirectory);
  BuildFileSetHeader(writer_, headerMap_, settings_.get);
  // Nothing is written between the header and the first patient's record.
  firstRecordPosition_ = lastRecordPosition_ = writer_.GetCursor();
  const RecordArray patients(pPatients, "patients");
  WritePatients(patients);
  LinkRoot(patients);
  writer_.WriteToFile(ToWide(JoinPath(outputFolder_, kDirectoryFileName)));
  if (bCopyViewer == VARIANT_TRUE) {
    CopyViewerPackage(fileSystem_, GetModuleDirectory(), outputFolder_, ToNarrow(bstrCulture));
  }
}

std::string DiscBuilder::CreateOutputFolder(BSTR bstrDirectoryName, BSTR bstrTitle,
                                            BSTR* pbstrOutputDirectory) {
  const std::string folder = JoinPath(ToNarrow(bstrDirectoryName), ToNarrow(bstrTitle));
  *pbstrOutputDirectory = SysAllocString(ToWide(folder).c_str());
  if (*pbstrOutputDirectory == nullptr) throw std::bad_alloc();
  MakeFolder(folder);
  return folder;
}

std::string DiscBuilder::CreateNamedFolder(const std::string& parent, const std::string& name) {
  std::string folder = JoinPath(parent, name);
  MakeFolder(folder);
  return folder;
}

std::string DiscBuilder::CreateIndexedFolder(const std::string& parent, const std::string& prefix,
                                             std::int32_t index) {
  return CreateNamedFolder(parent, MakeIndexedName(prefix, index));
}

std::string DiscBuilder::MakeIndexedName(const std::string& prefix, std::int32_t index) {
  if (index < 0 || index > kHighestIndex) {
    Raise(kWriterUnit, __LINE__,
          "The index %d doesn't fit the name of a %s folder or file, which holds the indices 0 "
          "to 9999.",
          index, prefix.c_str());
  }
  return prefix + std::to_string(index);
}

void DiscBuilder::MakeFolder(const std::string& path) {
  const int error = fileSystem_.MakeDirectory(path);
  if (error == ENOENT || error == ENOTDIR) {
    Raise(kWriterUnit, __LINE__,
          "Failed to create directory because the path was not found. \r\nThe directory name: %s",
          path.c_str());
  }
}

template <class WriteObject>
void DiscBuilder::ForEachRecord(const RecordArray& array, WriteObject writeObject) {
  // 64 bits, so that an upper bound of 0x7FFFFFFF ends the loop.
  for (std::int64_t index = array.Lower(); index <= array.Upper(); ++index) {
    OffsetMap recordMap;
    writeObject(static_cast<LONG>(index), recordMap);
    if (index < array.Upper()) {
      LinkOffset(kDirectoryGroup, 0x1400, writer_.GetCursor(), writer_, recordMap,
                 "Can't find the next record VR offset.");
    }
  }
}

void DiscBuilder::LinkLowerLevel(const RecordArray& children, const OffsetMap& recordMap) {
  if (children.IsEmpty()) return;
  LinkOffset(kDirectoryGroup, 0x1420, writer_.GetCursor(), writer_, recordMap,
             "Can't find the lower level record VR offset.");
}

void DiscBuilder::WritePatients(const RecordArray& patients) {
  ForEachRecord(patients, [&](LONG index, OffsetMap& recordMap) {
    lastRecordPosition_ = writer_.GetCursor();
    // Made for each patient: from the second on, it stands already.
    const std::string imageTree = CreateNamedFolder(outputFolder_, kImageTreeName);
    const std::string folder = CreateIndexedFolder(imageTree, "PA", index);
    const auto patient = patients.Get<IDicomDirPatient>(index, IID_IDicomDirPatient);
    WriteRecord(BuildPatientRecord(*patient.get()).get(), writer_, recordMap);
    SafeArrayPtr studies;
    CheckStatus(patient->GetStudies(studies.Receive()), __LINE__);
    const RecordArray children(std::move(studies), "studies");
    LinkLowerLevel(children, recordMap);
    WriteStudies(children, folder);
  });
}

void DiscBuilder::WriteStudies(const RecordArray& studies, const std::string& patientFolder) {
  ForEachRecord(studies, [&](LONG index, OffsetMap& recordMap) {
    const std::string folder = CreateIndexedFolder(patientFolder, "ST", index);
    const auto study = studies.Get<IDicomDirStudy>(index, IID_IDicomDirStudy);
    WriteRecord(BuildStudyRecord(*study.get()).get(), writer_, recordMap);
    SafeArrayPtr series;
    CheckStatus(study->GetSeries(series.Receive()), __LINE__);
    const RecordArray children(std::move(series), "series");
    LinkLowerLevel(children, recordMap);
    WriteSeries(children, folder);
  });
}

void DiscBuilder::WriteSeries(const RecordArray& series, const std::string& studyFolder) {
  ForEachRecord(series, [&](LONG index, OffsetMap& recordMap) {
    const std::string folder = CreateIndexedFolder(studyFolder, "SE", index);
    const auto oneSeries = series.Get<IDicomDirSeries>(index, IID_IDicomDirSeries);
    WriteRecord(BuildSeriesRecord(*oneSeries.get()).get(), writer_, recordMap);
    SafeArrayPtr images;
    CheckStatus(oneSeries->GetImages(images.Receive()), __LINE__);
    const RecordArray children(std::move(images), "images");
    LinkLowerLevel(children, recordMap);
    WriteImages(children, folder);
  });
}

void DiscBuilder::WriteImages(const RecordArray& images, const std::string& seriesFolder) {
  ForEachRecord(images, [&](LONG index, OffsetMap& recordMap) {
    const auto image = images.Get<IDicomDirImage>(index, IID_IDicomDirImage);
    const std::string target = JoinPath(seriesFolder, MakeIndexedName("IM", index));
    CopyImage(*image.get(), target);
    WriteRecord(BuildImageRecord(*image.get(), target, outputFolder_).get(), writer_, recordMap);
  });
}

void DiscBuilder::CopyImage(IDicomDirImage& image, const std::string& targetPath) {
  BString fileName;
  CheckStatus(image.GetImageFilename(fileName.Receive()), __LINE__);
  const std::string source = ToNarrow(fileName.get());
  if (source.size() >= kSourcePathLimit) {
    Raise(kWriterUnit, __LINE__,
          "The image file name of %zu characters is too long: at most 2047 are allowed.",
          source.size());
  }
  if (fileSystem_.CopyFileNoReplace(source, targetPath) != 0) {
    Raise(kWriterUnit, __LINE__, "Failed to copy the image files.");
  }
}

void DiscBuilder::LinkRoot(const RecordArray& patients) {
  if (!patients.IsEmpty()) {
    LinkOffset(kDirectoryGroup, 0x1200, firstRecordPosition_, writer_, headerMap_,
               "Can't find the first record VR offset.");
    LinkOffset(kDirectoryGroup, 0x1202, lastRecordPosition_, writer_, headerMap_,
               "Can't find the last record VR offset.");
  }
  CloseRecordSequence(firstRecordPosition_, writer_, headerMap_);
}

}  // namespace halvorine
