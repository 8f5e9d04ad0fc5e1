// Whole-process loads of DICOMDIRs of 1,000, 10,000 and 100,000 image records: "halvorine load
// --quiet" against the dcmtk and gdcm peers (when they were built) and against reading the file's
// bytes from page cache. Times are the child's CPU time (user + system) from wait4, so that a
// machine shared with other work doesn't skew them; peak memory is its maximum resident set.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "reading/DicomDirVariants.h"

extern char** environ;

namespace {

struct Outcome {
  double cpuSeconds = 0;
  double peakMegabytes = 0;
};

Outcome RunProcess(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  Outcome outcome;
  if (posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) std::abort();
    outcome.cpuSeconds = usage.ru_utime.tv_sec + usage.ru_utime.tv_usec / 1e6 +
                         usage.ru_stime.tv_sec + usage.ru_stime.tv_usec / 1e6;
    outcome.peakMegabytes = usage.ru_maxrss / 1024.0;
  }
  posix_spawn_file_actions_destroy(&actions);
  return outcome;
}

// A folder with a DICOMDIR of about images image records, made once per size and process.
std::string Disc(int images) {
  static std::map<int, std::string> discs;
  auto [place, added] = discs.try_emplace(images);
  if (added) {
    place->second = (std::filesystem::temp_directory_path() /
                     ("halvorine-load-bench-" + std::to_string(images)))
                        .string();
    std::filesystem::create_directories(place->second);
    const int patients = std::max(1, images / 1000);
    const auto records = halvorine::testing::MakeTree(patients, 2, 5, images / patients / 10);
    std::ofstream(place->second + "/DICOMDIR", std::ios::binary)
        << halvorine::testing::MakeDicomDir(records, {});
  }
  return place->second;
}

void LoadAgainstPeers(benchmark::State& state) {
  const std::string disc = Disc(static_cast<int>(state.range(0)));
  const std::string file = disc + "/DICOMDIR";
  Outcome load;
  for (auto _ : state) {
    load = RunProcess({HALVORINE_PROGRAM, "load", "--quiet", disc});
    state.SetIterationTime(load.cpuSeconds);
  }
  state.counters["cpu_s"] = load.cpuSeconds;
  state.counters["peak_MB"] = load.peakMegabytes;
  state.counters["read_bytes_s"] = RunProcess({"/bin/cat", file}).cpuSeconds;
  std::vector<Outcome> peers;
#ifdef DCMTK_PEER_PROGRAM
  peers.push_back(RunProcess({DCMTK_PEER_PROGRAM, file}));
  state.counters["dcmtk_cpu_s"] = peers.back().cpuSeconds;
  state.counters["dcmtk_peak_MB"] = peers.back().peakMegabytes;
#endif
#ifdef GDCM_PEER_PROGRAM
  peers.push_back(RunProcess({GDCM_PEER_PROGRAM, file}));
  state.counters["gdcm_cpu_s"] = peers.back().cpuSeconds;
  state.counters["gdcm_peak_MB"] = peers.back().peakMegabytes;
#endif
  if (peers.empty()) return;
  const auto faster = std::min_element(
      peers.begin(), peers.end(), [](auto& a, auto& b) { return a.cpuSeconds < b.cpuSeconds; });
  const auto smaller = std::min_element(peers.begin(), peers.end(), [](auto& a, auto& b) {
    return a.peakMegabytes < b.peakMegabytes;
  });
  state.counters["time_vs_faster_peer"] = load.cpuSeconds / faster->cpuSeconds;
  state.counters["memory_vs_lower_peer"] = load.peakMegabytes / smaller->peakMegabytes;
}

BENCHMARK(LoadAgainstPeers)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
