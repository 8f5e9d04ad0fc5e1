// The dcmtk peer of "halvorine load --quiet": loads a DICOMDIR with dcmtk's DcmDicomDir, which
// resolves the record offsets into a tree, and visits every record reading the attributes that a
// load of the component reads.
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcdicdir.h>
#include <dcmtk/dcmdata/dcdirrec.h>

#include <cstdio>

namespace {

const DcmTagKey kAttributes[] = {DCM_DirectoryRecordType,
                                 DCM_PatientName,
                                 DCM_PatientID,
                                 DCM_StudyDate,
                                 DCM_StudyTime,
                                 DCM_AccessionNumber,
                                 DCM_StudyDescription,
                                 DCM_InstitutionName,
                                 DCM_StudyInstanceUID,
                                 DCM_StudyID,
                                 DCM_Modality,
                                 DCM_SeriesInstanceUID,
                                 DCM_SeriesNumber,
                                 DCM_ReferencedFileID,
                                 DCM_ReferencedSOPClassUIDInFile,
                                 DCM_ReferencedSOPInstanceUIDInFile,
                                 DCM_InstanceNumber};

// The number of values read, so that the visit can't be optimised away.
unsigned long Visit(DcmDirectoryRecord& record) {
  unsigned long read = 0;
  OFString value;
  for (const DcmTagKey& key : kAttributes) {
    if (record.findAndGetOFStringArray(key, value).good()) ++read;
  }
  for (unsigned long i = 0; i < record.cardSub(); ++i) read += Visit(*record.getSub(i));
  return read;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DICOMDIR\n", argv[0]);
    return 2;
  }
  DcmDicomDir directory(argv[1]);
  if (directory.error().bad()) {
    std::fprintf(stderr, "%s\n", directory.error().text());
    return 1;
  }
  return Visit(directory.getRootRecord()) == 0 ? 1 : 0;
}
