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

// The attributes of an IMAGE record as scanners' discs have them, about 220 bytes in all: a
// UID of the usual length, the transfer syntax and the content date.
void FillLikeAScanner(halvorine::testing::VariantRecord& record) {
  auto& attributes = record.attributes;
  attributes[2].value = "1.2.826.0.1.3680043.2.1125.1.4736." + attributes[2].value;
  attributes.insert(attributes.begin() + 3, {0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1"});
  attributes.insert(attributes.begin() + 4, {0x0008, 0x0023, "DA", "20240309"});
}

void WriteDisc(const std::string& folder, int images) {
  std::filesystem::create_directories(folder);
  const int patients = std::max(1, images / 1000);
  auto records = halvorine::testing::MakeTree(patients, 2, 5, images / patients / 10);
  for (auto& record : records) {
    if (record.type == "IMAGE") FillLikeAScanner(record);
  }
  std::ofstream(folder + "/DICOMDIR", std::ios::binary)
      << halvorine::testing::MakeDicomDir(records, {});
}

// A folder with a DICOMDIR of about images image records, made once per size and process. A
// child process writes it: a spawned child's peak resident memory counts its parent's peak too,
// so this process must stay small.
std::string Disc(int images) {
  static std::map<int, std::string> discs;
  auto [place, added] = discs.try_emplace(images);
  if (added) {
    place->second = (std::filesystem::temp_directory_path() /
                     ("halvorine-load-bench-" + std::to_string(images)))
                        .string();
    RunProcess({std::filesystem::canonical("/proc/self/exe").string(), "--write-disc",
                place->second, std::to_string(images)});
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

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "--write-disc") {
    WriteDisc(argv[2], std::stoi(argv[3]));
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
