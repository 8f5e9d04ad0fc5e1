// The fields that a load fills, as text, one line per object indented by level: once from the
// loaded objects, once from what dcmdump shows of the same file. Texts lose their trailing
// blanks on both sides, since dcmdump shows none.
#ifndef HALVORINE_TESTS_READING_RECORDTREE_H
#define HALVORINE_TESTS_READING_RECORDTREE_H

#include <halvorine/com.h>

#include <string>

namespace halvorine::testing {

std::string LoadedTree(SAFEARRAY* patients);

// dump is the output of "dcmdump -Un +L" of the DICOMDIR in folder; the tree follows its links
// from (0004,1200), by the offsets that dcmdump gives each record.
std::string DumpedTree(const std::string& dump, const std::string& folder);

// Runs command and gives its standard output; fails the test when it exits non-zero.
std::string RunCommand(const std::string& command);

}  // namespace halvorine::testing

#endif  // HALVORINE_TESTS_READING_RECORDTREE_H
