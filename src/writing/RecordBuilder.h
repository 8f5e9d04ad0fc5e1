// The directory records of a disc, one VRSequenceItem (FFFE,E000) for each record object. Every
// record opens with the same four elements, then those of its type, all in tag order:
//
//   (0004,1400) UL  offset of the next record, 0 until linked
//   (0004,1410) US  in-use flag, 0xFFFF
//   (0004,1420) UL  offset of the first record below, 0 until linked
//   (0004,1430) CS  "PATIENT", "STUDY", "SERIES" or "IMAGE"
//
//   PATIENT  (0010,0010) PN name, (0010,0020) LO ID, (0010,0040) CS sex
//   STUDY    (0008,0020) DA date and (0008,0030) TM time, both left out without a date,
//            (0008,0050) SH accession number, (0008,0080) LO institution,
//            (0008,1030) LO description, (0020,000D) UI instance UID, (0020,0010) SH ID
//   SERIES   (0008,0060) CS modality, (0020,000E) UI instance UID, (0020,0011) IS number
//   IMAGE    (0004,1500) UI file ID, (0004,1510) UI SOP class, (0004,1511) UI SOP instance,
//            (0004,1512) UI transfer syntax, (0020,0013) IS instance number
//
// Texts are the narrow forms of the objects' strings, a null one giving an empty element; they
// are padded at encoding, UIDs with a NUL and all else with a blank. A failing getter raises
// "COM method failed. HRESULT=...". The caller owns the record.
#ifndef HALVORINE_WRITING_RECORDBUILDER_H
#define HALVORINE_WRITING_RECORDBUILDER_H

#include <halvorine/dicomdir.h>

#include <memory>
#include <string>

#include "engine/elements/VRSequenceItem.h"

namespace halvorine {

std::unique_ptr<DicomEngine::VRSequenceItem> BuildPatientRecord(IDicomDirPatient& patient);
std::unique_ptr<DicomEngine::VRSequenceItem> BuildStudyRecord(IDicomDirStudy& study);
std::unique_ptr<DicomEngine::VRSequenceItem> BuildSeriesRecord(IDicomDirSeries& series);
// targetPath is where the image was copied to, below outputFolder.
std::unique_ptr<DicomEngine::VRSequenceItem> BuildImageRecord(IDicomDirImage& image,
                                                              const std::string& targetPath,
                                                              const std::string& outputFolder);

// The Referenced File ID of the file at targetPath: the path behind outputFolder and the
// separator that joins them (the whole path when outputFolder isn't in it), with '\' between its
// components whatever the platform's separator.
std::string MakeReferencedFileId(const std::string& targetPath, const std::string& outputFolder);

}  // namespace halvorine

#endif  // HALVORINE_WRITING_RECORDBUILDER_H
