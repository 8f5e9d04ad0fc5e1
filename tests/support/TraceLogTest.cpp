#include "support/TraceLog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "TempFolder.h"
#include "platform/Clock.h"
#include "platform/ModulePath.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

const std::string kStamp = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}";

// The texts of a trace file's lines, and their stamps into stamps when given; whatever doesn't
// have the shape of a line ends the texts as one entry "malformed: ...".
std::vector<std::string> TextsOf(const std::string& path,
                                 std::vector<std::string>* stamps = nullptr) {
  static const std::regex kLine(">>> (" + kStamp + ") --- ([^\r\n]*)\r\n");
  const std::string content = ReadWholeFile(path);
  std::vector<std::string> texts;
  std::size_t covered = 0;
  for (std::sregex_iterator line(content.begin(), content.end(), kLine), end;
       line != end && static_cast<std::size_t>(line->position()) == covered; ++line) {
    covered += line->length();
    texts.push_back((*line)[2]);
    if (stamps != nullptr) stamps->push_back((*line)[1]);
  }
  if (covered != content.size()) texts.push_back("malformed: " + content.substr(covered));
  return texts;
}

std::string Stamp(const SystemTime& t) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d:%03d", t.year, t.month, t.day,
                t.hour, t.minute, t.second, t.milliseconds);
  return text;
}

bool Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

const std::string kSetUp3 = "The unmanaged trace level is: 3";

// No event has the level 0, so at that level the file is made and stays empty. Lines carry the
// local time.
TEST(TraceLogTest, WritesALineWhenItsLevelIsAtMostTheConfiguredOne) {
  for (std::uint32_t level = 0; level <= 4; ++level) {
    TempFolder temp;
    TraceLog log;
    const std::string before = Stamp(LocalNow());
    log.Initialize(ToWide(temp.Path("a.log")), level);
    for (int event = -1; event <= 5; ++event) log.Trace("event " + std::to_string(event), event);
    const std::string after = Stamp(LocalNow());
    std::vector<std::string> expected;
    if (level >= 1) expected.push_back("The unmanaged trace level is: " + std::to_string(level));
    for (int event = -1; event <= static_cast<int>(level); ++event) {
      expected.push_back("event " + std::to_string(event));
    }
    std::vector<std::string> stamps;
    EXPECT_EQ(TextsOf(temp.Path("a.log"), &stamps), expected) << "level " << level;
    for (const std::string& stamp : stamps) EXPECT_TRUE(before <= stamp && stamp <= after);
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
  EXPECT_FALSE(Exists(temp.Path("second.log")));
  EXPECT_FALSE(Exists(temp.Path("missing")));
  EXPECT_EQ(TextsOf(temp.Path("first.log")),
            (std::vector<std::string>{"earlier run", "The unmanaged trace level is: 1", "kept"}));
}

// A name without '/' goes into the "Log" folder beside the executable, here the test's own; a
// backslash is no separator. A name with a slash is used unchanged.
TEST(TraceLogTest, ABareNameGoesIntoTheLogFolder) {
  const std::string logFolder = GetModuleDirectory() + "Log/";
  ASSERT_NE(logFolder, "Log/");
  const std::string unique = std::to_string(getpid());
  const std::string marker = "bare name " + unique;
  const std::string own[] = {"halvorine-" + unique + "-trac\xC3\xA9.log",
                             "C:\\temp\\halvorine-" + unique + ".log"};
  for (const std::string& file : {std::string("Trace.log"), own[0], own[1]}) {
    TraceLog log;
    log.Initialize(file == "Trace.log" ? u"" : ToWide(file), 3);
    log.Trace(marker, 1);
    // Other tests may share Trace.log: only the line of this one is looked at.
    const std::string content = ReadWholeFile(logFolder + file);
    const std::regex ownLine("(?:^|\n)>>> " + kStamp + " --- " + marker + "\r\n");
    EXPECT_EQ(std::distance(std::sregex_iterator(content.begin(), content.end(), ownLine),
                            std::sregex_iterator()),
              1)
        << file;
  }
  for (const std::string& file : own) std::remove((logFolder + file).c_str());
  TempFolder temp;
  temp.MakeFolder("sub");
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(temp.Path().c_str()), 0);
  TraceLog log;
  log.Initialize(u"sub/relative.log", 3);
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_EQ(TextsOf(temp.Path("sub/relative.log")), std::vector<std::string>{kSetUp3});
}

// Thread t traces lines of 100 + t letters, all of them the t-th letter.
std::string Line(int t) { return std::string(100 + t, static_cast<char>('a' + t)); }

TEST(TraceLogTest, LinesOfManyThreadsStayWhole) {
  TempFolder temp;
  TraceLog log;
  log.Initialize(ToWide(temp.Path("a.log")), 3);
  constexpr int kThreads = 4;
  constexpr int kLines = 250;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&log, t] {
      for (int i = 0; i < kLines; ++i) log.Trace(Line(t), 2);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<std::string> texts = TextsOf(temp.Path("a.log"));
  std::vector<std::string> expected = {kSetUp3};
  for (int t = 0; t < kThreads; ++t) expected.insert(expected.end(), kLines, Line(t));
  std::sort(texts.begin() + 1, texts.end());
  EXPECT_TRUE(texts == expected);
}

}  // namespace
}  // namespace halvorine
