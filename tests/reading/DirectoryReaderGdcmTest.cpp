// The loaded tree against dcmdump's view of a disc that gdcm's gdcmgendir writes.
#include <gtest/gtest.h>

#include "ReadingTestSupport.h"
#include "TempFolder.h"

namespace halvorine {

TEST(DirectoryReaderGdcmTest, DiscOfGdcmgendirMatchesDcmdump) {
  const TempFolder disc;
  testing::ExpectWrittenDiscMatchesDcmdump(disc.Path(), "gdcmgendir -r -i . -o DICOMDIR");
}

}  // namespace halvorine
