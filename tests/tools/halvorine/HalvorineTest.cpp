#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <utility>

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
  EXPECT_FALSE(registry_.Exists());
}

TEST_F(HalvorineTest, PrintsTheTreeOfADiscAndFailsWithTheErrorDescription) {
  const std::string disc = SAMPLE_DISC;
  const std::string folder = disc + "/DICOM/PA";
  const std::string ct = "SOPClass=[1.2.840.10008.5.1.4.1.1.7] SOPInstance=[1.3.6.1.4.1.58217.99.";
  const Outcome loaded = Run("load " + disc);
  EXPECT_EQ(loaded.exitCode, 0) << loaded.err;
  EXPECT_EQ(loaded.out,
            "PATIENT Name=[Sample^Alice] ID=[PID001]\n"
            "  STUDY Date=2024-03-09 09:30:00 ID=[ST1 ] UID=[1.3.6.1.4.1.58217.99.1] "
            "Accession=[ACC1] Description=[Sample study 1] Institution=(null)\n"
            "    SERIES Number=1 Modality=[CT] UID=[1.3.6.1.4.1.58217.99.1.1]\n"
            "      IMAGE Number=1 File=[" +
                folder + "1/ST1/SE1/IM1] " + ct +
                "1.1.1]\n"
                "      IMAGE Number=2 File=[" +
                folder + "1/ST1/SE1/IM2] " + ct +
                "1.1.2]\n"
                "    SERIES Number=2 Modality=[MR] UID=[1.3.6.1.4.1.58217.99.1.2]\n"
                "      IMAGE Number=1 File=[" +
                folder + "1/ST1/SE2/IM1] " + ct +
                "1.2.1]\n"
                "PATIENT Name=[Sample^Bob] ID=[PID002]\n"
                "  STUDY Date=2023-12-24 09:30:00 ID=[ST2 ] UID=[1.3.6.1.4.1.58217.99.2] "
                "Accession=[ACC2] Description=[Sample study 2] Institution=(null)\n"
                "    SERIES Number=1 Modality=[OT] UID=[1.3.6.1.4.1.58217.99.2.1]\n"
                "      IMAGE Number=1 File=[" +
                folder + "2/ST1/SE1/IM1] " + ct +
                "2.1.1]\n"
                "      IMAGE Number=2 File=[" +
                folder + "2/ST1/SE1/IM2] " + ct + "2.1.2]\n");
  const Outcome quiet = Run("load " + disc + " --quiet");
  EXPECT_EQ(quiet.exitCode, 0) << quiet.err;
  EXPECT_EQ(quiet.out, "");

  const Outcome missing = Run("load /no/such/folder");
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err.rfind("halvorine: load failed (0x80004005): <exception Message=\"Can't "
                              "open folder /no/such/folder ",
                              0),
            0u)
      << missing.err;
}

// Help goes to standard output; a command line that names no command, or holds too little or too
// much for its command, gets what is wrong and the usage on standard error, and exit code 2.
TEST_F(HalvorineTest, ParsesItsCommandLine) {
  const std::string usage =
      "Loads DICOMDIR discs and registers in-process components\n"
      "Usage: halvorine COMMAND OPERAND [FLAG]\n\nCommands:\n"
      "  load FOLDER [--quiet]        Load the DICOMDIR of FOLDER and print its tree (--quiet: "
      "only "
      "load and release it)\n"
      "  register LIBRARY             Register the classes of an in-process component\n"
      "  unregister LIBRARY           Remove the registration of an in-process component's "
      "classes\n";
  for (const char* arguments : {"--help", "-h", "load --help", "register x -h"}) {
    const Outcome help = Run(arguments);
    EXPECT_EQ(help.exitCode, 0) << arguments;
    EXPECT_EQ(help.out, usage) << arguments;
  }
  const std::pair<const char*, const char*> refused[] = {
      {"", "no command given"},
      {"reg " DICOMDIR_LIBRARY, "no command \"reg\""},
      {"register", "register needs its LIBRARY"},
      {"load", "load needs its FOLDER"},
      {"load a b", "load doesn't take \"b\""},
      {"load --fast a", "load doesn't take \"--fast\""},
      {"register --quiet " DICOMDIR_LIBRARY, "register doesn't take \"--quiet\""},
  };
  for (const auto& [arguments, problem] : refused) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, 2) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_EQ(outcome.err, "halvorine: " + std::string(problem) + "\n" + usage) << arguments;
  }
  EXPECT_FALSE(registry_.Exists());
}

}  // namespace
}  // namespace halvorine
