// Discs for the cross-checks: tiny images that dump2dcm writes, and the loaded tree of a
// DICOMDIR beside the tree that dcmdump shows of it.
#ifndef HALVORINE_TESTS_READING_DISCFIXTURES_H
#define HALVORINE_TESTS_READING_DISCFIXTURES_H

#include <string>

namespace halvorine::testing {

// Writes images of 2 patients, 3 studies, 4 series and 6 images under folder/images with
// dump2dcm, file names of at most 8 characters, as a DICOM writer expects.
void MakeImages(const std::string& folder);

// The tree that DirectoryReader loads from folder/name, and the one that dcmdump shows.
std::string LoadTree(const std::string& folder, const std::string& name = "DICOMDIR");
std::string DcmdumpTree(const std::string& folder, const std::string& name = "DICOMDIR");

}  // namespace halvorine::testing

#endif  // HALVORINE_TESTS_READING_DISCFIXTURES_H
