// What the reader's tests share (the writer's load their discs back with it), beside the variant
// files of DicomDirVariants.h. Trees: the fields that a load fills, as text, one line per object
// indented by level, once from the loaded objects, once from what dcmdump shows of the same
// file; texts lose their trailing blanks on both sides, since dcmdump shows none.
#ifndef HALVORINE_TESTS_READING_READINGTESTSUPPORT_H
#define HALVORINE_TESTS_READING_READINGTESTSUPPORT_H

#include <halvorine/com.h>

#include <string>

#include "DicomDirVariants.h"
#include "service/LoadedRecords.h"

namespace halvorine::testing {

std::string LoadedTree(SAFEARRAY* patients);

// The tree that DirectoryReader loads from folder/DICOMDIR, or the failure's text with "!" in
// front (a failed load hands out no tree); and the one that "dcmdump -Un +L" shows, following its
// links from (0004,1200) by the offsets that dcmdump gives each record.
std::string LoadTree(const std::string& folder);
std::string DcmdumpTree(const std::string& folder);

// Runs command and gives its standard output; fails the test when it exits non-zero.
std::string RunCommand(const std::string& command);

// Writes 6 images of 2 patients, 3 studies and 4 series under folder/IMAGES with dump2dcm, runs
// command (a DICOMDIR writer) in folder, and checks the loaded tree against dcmdump's.
void ExpectWrittenDiscMatchesDcmdump(const std::string& folder, const std::string& command);

}  // namespace halvorine::testing

#endif  // HALVORINE_TESTS_READING_READINGTESTSUPPORT_H
