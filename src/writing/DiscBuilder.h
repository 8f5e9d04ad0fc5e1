// Lays a tree of record objects out as a disc, below a new folder named by the title:
//
//   DICOMDIR                      the directory, written in one go at the end
//   DICOM/PA<i>/ST<j>/SE<k>/IM<l> one folder per patient, study and series, and one copy of
//                                 each image, i j k l being the indices in their arrays
//   the viewer package            on request, beside DICOMDIR
//
// The tree is walked once, depth first: each folder stands, and each image is copied, before
// its record is built, so a record never describes a file that failed to copy. Nothing is rolled
// back on a failure: the folders and files made so far stay, and no DICOMDIR is written.
#ifndef HALVORINE_WRITING_DISCBUILDER_H
#define HALVORINE_WRITING_DISCBUILDER_H

#include <halvorine/dicomdir.h>

#include <cstdint>
#include <functional>
#include <string>

#include "engine/elements/VRContainer.h"
#include "engine/encoding/FileWriter.h"
#include "platform/FileSystem.h"
#include "writing/FileSetHeader.h"
#include "writing/RecordArray.h"

namespace halvorine {

// Where a write's settings come from: the process's table in production, a table of its own in
// a test.
struct SettingsAccess {
  std::function<void(const std::string& fileName)> load;
  SettingReader get;

  static SettingsAccess Process();
};

// One builder makes one disc: the writer and the positions of a call live in it.
class DiscBuilder {
 public:
  DiscBuilder(FileSystem& fileSystem, SettingsAccess settings);
  DiscBuilder(const DiscBuilder&) = delete;
  DiscBuilder& operator=(const DiscBuilder&) = delete;

  // The body of CreateDicomDir, whose argument checks have passed. *pbstrOutputDirectory is set
  // before anything that can fail but the settings load, and stays set on a failure. The viewer
  // package is copied when bCopyViewer is exactly VARIANT_TRUE; a null culture is the empty one.
  void BuildDisc(BSTR bstrDirectoryName, BSTR bstrTitle, SAFEARRAY* pPatients,
                 BSTR* pbstrOutputDirectory, VARIANT_BOOL bCopyViewer, BSTR bstrCulture);

 private:
  // The directory, '/' unless it ends in one, the title; the caller gets it in
  // *pbstrOutputDirectory before the folder is made. Only this one level is made.
  std::string CreateOutputFolder(BSTR bstrDirectoryName, BSTR bstrTitle,
                                 BSTR* pbstrOutputDirectory);
  // A folder that exists is used as it stands. One whose parent is missing raises "Failed to
  // create directory because the path was not found. ..." at once; any other failure shows at
  // the first copy into it, or at the writing of DICOMDIR.
  std::string CreateNamedFolder(const std::string& parent, const std::string& name);
  std::string CreateIndexedFolder(const std::string& parent, const std::string& prefix,
                                  std::int32_t index);
  // The prefix and the index in plain decimal: "PA0", "PA10". Only 0 to 9999 fit a name of at
  // most eight characters; any other index raises, so no two objects are named alike.
  static std::string MakeIndexedName(const std::string& prefix, std::int32_t index);

  // Calls writeObject(index, recordMap) for each index of the array, with an empty map for the
  // record, and links each record but the last to its next sibling.
  template <class WriteObject>
  void ForEachRecord(const RecordArray& array, WriteObject writeObject);
  void LinkLowerLevel(const RecordArray& children, const DicomEngine::OffsetMap& recordMap);
  void WritePatients(const RecordArray& patients);
  void WriteStudies(const RecordArray& studies, const std::string& patientFolder);
  void WriteSeries(const RecordArray& series, const std::string& studyFolder);
  void WriteImages(const RecordArray& images, const std::string& seriesFolder);
  void CopyImage(IDicomDirImage& image, const std::string& targetPath);
  void MakeFolder(const std::string& path);
  void LinkRoot(const RecordArray& patients);

  FileSystem& fileSystem_;
  const SettingsAccess settings_;
  std::string outputFolder_;
  DicomEngine::FileWriter writer_;
  DicomEngine::OffsetMap headerMap_;
  std::uint32_t firstRecordPosition_ = 0;
  std::uint32_t lastRecordPosition_ = 0;
};

}  // namespace halvorine

#endif  // HALVORINE_WRITING_DISCBUILDER_H
