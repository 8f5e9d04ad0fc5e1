#include "writing/OffsetLinker.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"

namespace halvorine {
namespace {

// The links themselves are checked on whole discs against dcmdump (DiscBuilderDcmtkTest).
TEST(OffsetLinkerTest, FailuresNameWhatIsMissing) {
  DicomEngine::BufferWriter writer("1.2.840.10008.1.2.1");
  writer.WriteUnsignedLong(0);
  const DicomEngine::OffsetMap recordMap{{0x14000004, 0}};
  DicomEngine::OffsetMap map;
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { WriteRecord(nullptr, writer, map); }, "The DICOMDIR sequence VR is NULL."},
      {[&] { LinkOffset(0x0004, 0x1420, 0, writer, recordMap, "Can't find this."); },
       "Can't find this."},
      {[&] { CloseRecordSequence(0, writer, recordMap); }, "Can't find the records SQ VR."},
  };
  for (const auto& [action, proper] : cases) {
    const std::string message = RaisedMessage(action);
    EXPECT_TRUE(IsPlaced(message, proper, "DicomDirImpl")) << message;
  }
}

}  // namespace
}  // namespace halvorine
