#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

const std::string kLibrary = DICOMDIR_LIBRARY;

struct Outcome {
  int exitCode;
  std::string out;
  std::string err;
};

class HalvorineTest : public testing::Test {
 protected:
  // Runs the tool with arguments as a shell line, and gives what it printed.
  Outcome Run(const std::string& arguments) const {
    const std::string out = registry_.Folder().Path("out");
    const std::string err = registry_.Folder().Path("err");
    const int status = std::system(
        (std::string(HALVORINE_TOOL) + " " + arguments + " >" + out + " 2>" + err).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadWholeFile(out), ReadWholeFile(err)};
  }

  TempRegistry registry_;
};

TEST_F(HalvorineTest, RegistersAndUnregistersAComponent) {
  const Outcome registered = Run("register " + kLibrary);
  EXPECT_EQ(registered.exitCode, 0) << registered.err;
  EXPECT_EQ(registered.out, "DllRegisterServer in " + kLibrary + " succeeded (0x00000000)\n");
  EXPECT_NE(registry_.Text().find("DicomDir.DicomDirImpl.1"), std::string::npos);

  const Outcome unregistered = Run("unregister " + kLibrary);
  EXPECT_EQ(unregistered.exitCode, 0) << unregistered.err;
  EXPECT_EQ(unregistered.out, "DllUnregisterServer in " + kLibrary + " succeeded (0x00000000)\n");
  EXPECT_EQ(registry_.Text().find("DicomDir.DicomDirImpl.1"), std::string::npos);
}

TEST_F(HalvorineTest, ReportsARegistryThatCantBeParsedAndLeavesIt) {
  registry_.Write("REGEDIT4\n");
  for (const char* command : {"register", "unregister"}) {
    const Outcome outcome = Run(std::string(command) + " " + kLibrary);
    const std::string call = command[0] == 'r' ? "DllRegisterServer" : "DllUnregisterServer";
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, call + " in " + kLibrary +
                               " failed with status 0x800703F1\nThe registry file " +
                               registry_.Path() +
                               " can't be parsed: line 1 isn't \"Windows Registry Editor "
                               "Version 5.00\"\n");
  }
  EXPECT_EQ(registry_.Text(), "REGEDIT4\n");
}

TEST_F(HalvorineTest, RefusesWhatIsNoComponent) {
  const Outcome missing = Run("register /no/such/library.so");
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.err.rfind("halvorine: can't load /no/such/library.so: ", 0), 0u) << missing.err;
  const Outcome noExport = Run(std::string("unregister ") + HALVOCOM_LIBRARY);
  EXPECT_EQ(noExport.exitCode, 1);
  EXPECT_EQ(noExport.err,
            std::string("halvorine: ") + HALVOCOM_LIBRARY + " has no DllUnregisterServer\n");
  for (const char* arguments : {"", "register", "reg " DICOMDIR_LIBRARY}) {
    EXPECT_NE(Run(arguments).exitCode, 0) << arguments;
  }
  EXPECT_FALSE(registry_.Exists());
}

}  // namespace
}  // namespace halvorine
