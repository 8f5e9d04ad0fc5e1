#ifndef HALVORINE_READING_DIRECTORYLOCATION_H
#define HALVORINE_READING_DIRECTORYLOCATION_H

#include <string>

namespace halvorine {

// Looks into exactly the given folder for an entry that answers to "DICOMDIR" without regard to
// ASCII case; when several do, the exact name wins, then the first in byte order. Gives true and
// sets path (the folder, '/', the name as stored) for a file; false when only folders answer.
// Fails with "Can't open folder <folder>" when the folder doesn't exist (one trailing '/' is
// dropped; a name that still ends in one counts as missing), and with
// "Can't open file <folder>/DICOMDIR" when nothing in it answers.
bool FindDicomDirFile(const char16_t* directory, std::string* path);

}  // namespace halvorine

#endif  // HALVORINE_READING_DIRECTORYLOCATION_H
