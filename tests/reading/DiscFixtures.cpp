#include "DiscFixtures.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "RecordTree.h"
#include "platform/SafeArrayPtr.h"
#include "reading/DirectoryReader.h"
#include "service/DicomDirImage.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"
#include "support/TextConversion.h"

namespace halvorine::testing {
namespace {

constexpr RecordCreators kCreators = {&CreateObject<DicomDirPatient>, &CreateObject<DicomDirStudy>,
                                      &CreateObject<DicomDirSeries>, &CreateObject<DicomDirImage>};

struct Image {
  const char* file;
  const char* patient;
  int study;
  int series;
  int instance;
};

void WriteImage(const std::string& folder, const Image& image) {
  const std::string uid = "1.2.826.0.1.3680043.10.1." + std::to_string(image.study) + "." +
                          std::to_string(image.series) + "." + std::to_string(image.instance);
  const std::string dump = folder + "/" + image.file + ".txt";
  std::ofstream(dump) << "(0002,0001) OB 00\\01\n"
                      << "(0002,0002) UI =SecondaryCaptureImageStorage\n"
                      << "(0002,0003) UI " << uid << "\n"
                      << "(0002,0010) UI =LittleEndianExplicit\n"
                      << "(0008,0016) UI =SecondaryCaptureImageStorage\n"
                      << "(0008,0018) UI " << uid << "\n"
                      << "(0008,0020) DA 2024030" << image.study << "\n"
                      << "(0008,0030) TM 101500\n"
                      << "(0008,0050) SH A" << image.study << "\n"
                      << "(0008,0060) CS " << (image.series % 2 == 0 ? "MR" : "CT") << "\n"
                      << "(0008,0080) LO Clinic\n"
                      << "(0008,1030) LO Study " << image.study << "\n"
                      << "(0010,0010) PN " << image.patient << "^Test\n"
                      << "(0010,0020) LO " << image.patient << "\n"
                      << "(0020,000d) UI 1.2.826.0.1.3680043.10.1." << image.study << "\n"
                      << "(0020,000e) UI 1.2.826.0.1.3680043.10.1." << image.study << "."
                      << image.series << "\n"
                      << "(0020,0010) SH S" << image.study << "\n"
                      << "(0020,0011) IS " << image.series << "\n"
                      << "(0020,0013) IS " << image.instance << "\n"
                      << "(0028,0002) US 1\n(0028,0004) CS MONOCHROME2\n(0028,0010) US 2\n"
                      << "(0028,0011) US 2\n(0028,0100) US 8\n(0028,0101) US 8\n"
                      << "(0028,0102) US 7\n(0028,0103) US 0\n(7fe0,0010) OB 00\\01\\02\\03\n";
  RunCommand("dump2dcm --write-file " + dump + " " + folder + "/" + image.file);
  std::filesystem::remove(dump);
}

}  // namespace

void MakeImages(const std::string& folder) {
  std::filesystem::create_directories(folder + "/IMAGES");
  const Image images[] = {
      {"IMAGES/IM1", "ALPHA", 1, 1, 1}, {"IMAGES/IM2", "ALPHA", 1, 1, 2},
      {"IMAGES/IM3", "ALPHA", 1, 2, 1}, {"IMAGES/IM4", "ALPHA", 2, 1, 1},
      {"IMAGES/IM5", "BETA", 3, 1, 7},  {"IMAGES/IM6", "BETA", 3, 2, -3},
  };
  for (const Image& image : images) WriteImage(folder, image);
}

std::string LoadTree(const std::string& folder, const std::string& name) {
  RecordOffsetIndex index;
  SafeArrayPtr patients;
  DirectoryReader(index, kCreators, ToWide(folder))
      .ReadDirectory(folder + "/" + name, patients.Receive());
  return LoadedTree(patients.get());
}

std::string DcmdumpTree(const std::string& folder, const std::string& name) {
  return DumpedTree(RunCommand("dcmdump -q -Un +L " + folder + "/" + name), folder);
}

}  // namespace halvorine::testing
