#include "support/TraceLog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "TempFolder.h"
#include "platform/ModulePath.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

using Texts = std::vector<std::string>;

// The texts of a trace file's lines; whatever doesn't have the shape of a line ends them as one
// entry "malformed: ...".
Texts TextsOf(const std::string& path) {
  static const std::regex kLine(
      ">>> [0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3} --- ([^\r\n]*)\r\n");
  const std::string content = ReadWholeFile(path);
  Texts texts;
  std::size_t covered = 0;
  for (std::sregex_iterator line(content.begin(), content.end(), kLine), end;
       line != end && static_cast<std::size_t>(line->position()) == covered; ++line) {
    covered += line->length();
    texts.push_back((*line)[1]);
  }
  if (covered != content.size()) texts.push_back("malformed: " + content.substr(covered));
  return texts;
}

// No event has the level 0, so at that level the file is made and stays empty.
TEST(TraceLogTest, WritesALineWhenItsLevelIsAtMostTheConfiguredOne) {
  for (std::uint32_t level = 0; level <= 4; ++level) {
    TempFolder temp;
    TraceLog log;
    log.Initialize(ToWide(temp.Path("a.log")), level);
    for (int event = -1; event <= 5; ++event) log.Trace("event " + std::to_string(event), event);
    Texts expected(level >= 1 ? 1 : 0, "The unmanaged trace level is: " + std::to_string(level));
    for (int e = -1; e <= int(level); ++e) expected.push_back("event " + std::to_string(e));
    EXPECT_EQ(TextsOf(temp.Path("a.log")), expected) << "level " << level;
  }
}

// An earlier run's lines stay; a second Initialize changes neither the file nor the level. Until
// an Initialize opens its file every line is dropped, and the next Initialize is free.
TEST(TraceLogTest, AppendsAndKeepsTheFirstFileThatOpens) {
  TempFolder temp;
  WriteWholeFile(temp.Path("first.log"), ">>> 2024-03-09T07:05:03:042 --- earlier run\r\n");
  TraceLog log;
  log.Trace("before", 1);
  log.Initialize(ToWide(temp.Path("missing/a.log")), 4);
  log.Trace("dropped", 1);
  log.Initialize(ToWide(temp.Path("first.log")), 1);
  log.Initialize(ToWide(temp.Path("second.log")), 4);
  log.Trace("kept", 1);
  log.Trace("dropped", 2);
  EXPECT_EQ(access(temp.Path("second.log").c_str(), F_OK), -1);
  EXPECT_EQ(access(temp.Path("missing").c_str(), F_OK), -1);
  EXPECT_EQ(TextsOf(temp.Path("first.log")),
            (Texts{"earlier run", "The unmanaged trace level is: 1", "kept"}));
}

// A name without '/' goes into the "Log" folder beside the executable, here the test's own; a
// backslash is no separator, and no name is "Trace.log". A name with a slash is used unchanged:
// see the other cases.
TEST(TraceLogTest, ABareNameGoesIntoTheLogFolder) {
  const std::string logFolder = GetModuleDirectory() + "Log/";
  const std::string unique = std::to_string(getpid()), marker = "bare name " + unique;
  const std::string own[] = {"halvorine-" + unique + "-trac\xC3\xA9.log",
                             "C:\\temp\\halvorine-" + unique + ".log"};
  for (const std::string& file : {std::string("Trace.log"), own[0], own[1]}) {
    TraceLog log;
    log.Initialize(file == "Trace.log" ? u"" : ToWide(file), 3);
    log.Trace(marker, 1);
    // Other tests may share Trace.log: only the line of this one counts.
    EXPECT_NE(ReadWholeFile(logFolder + file).find(" --- " + marker + "\r\n"), std::string::npos)
        << file;
  }
  for (const std::string& file : own) std::remove((logFolder + file).c_str());
}

// Thread t traces lines of 100 + t letters, all of them the t-th letter.
TEST(TraceLogTest, LinesOfManyThreadsStayWhole) {
  TempFolder temp;
  TraceLog log;
  log.Initialize(ToWide(temp.Path("a.log")), 3);
  std::vector<std::thread> threads;
  Texts expected = {"The unmanaged trace level is: 3"};
  for (int t = 0; t < 4; ++t) {
    const std::string line(100 + t, static_cast<char>('a' + t));
    expected.insert(expected.end(), 250, line);
    threads.emplace_back([&log, line] {
      for (int i = 0; i < 250; ++i) log.Trace(line, 2);
    });
  }
  for (std::thread& thread : threads) thread.join();
  Texts texts = TextsOf(temp.Path("a.log"));
  std::sort(texts.begin() + 1, texts.end());
  EXPECT_TRUE(texts == expected);
}

}  // namespace
}  // namespace halvorine
