// Whole-process loads of DICOMDIRs of 1,000, 10,000 and 100,000 image records: "halvorine load
// --quiet" against the dcmtk and gdcm peers (when they were built) and against reading the file's
// bytes from page cache. Times are the child's CPU time (user + system) from wait4, so that a
// machine shared with other work doesn't skew them; peak memory is its maximum resident set.
// Each figure is the median of several runs.
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
#include <span>
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

// The median of the times, and the peak memory of the run that took it.
Outcome Median(std::vector<Outcome> runs) {
  std::nth_element(runs.begin(), runs.begin() + runs.size() / 2, runs.end(),
                   [](const Outcome& a, const Outcome& b) { return a.cpuSeconds < b.cpuSeconds; });
  return runs[runs.size() / 2];
}

struct Program {
  const char* name;
  std::vector<std::string> arguments;
  std::vector<Outcome> runs;
};

// Each iteration runs the load and each peer once, in turn, so that a slow spell of a shared
// machine falls on all of them alike; the figures are the medians over the iterations. The turn
// begins with the next program each time: a process started right after a heavy one finds the
// caches full of that one's lines and runs slower, and no program should always follow the same.
void LoadAgainstPeers(benchmark::State& state) {
  const std::string disc = Disc(static_cast<int>(state.range(0)));
  const std::string file = disc + "/DICOMDIR";
  std::vector<Program> programs = {{"", {HALVORINE_PROGRAM, "load", "--quiet", disc}, {}},
                                   {"read_bytes_", {"/bin/cat", file}, {}}};
#ifdef DCMTK_PEER_PROGRAM
  programs.push_back({"dcmtk_", {DCMTK_PEER_PROGRAM, file}, {}});
#endif
#ifdef GDCM_PEER_PROGRAM
  programs.push_back({"gdcm_", {GDCM_PEER_PROGRAM, file}, {}});
#endif
  std::size_t first = 0;
  for (auto _ : state) {
    for (std::size_t turn = 0; turn < programs.size(); ++turn) {
      Program& program = programs[(first + turn) % programs.size()];
      program.runs.push_back(RunProcess(program.arguments));
    }
    first = (first + 1) % programs.size();
    state.SetIterationTime(programs.front().runs.back().cpuSeconds);
  }
  std::vector<Outcome> medians;
  for (const Program& program : programs) {
    medians.push_back(Median(program.runs));
    state.counters[std::string(program.name) + "cpu_s"] = medians.back().cpuSeconds;
    state.counters[std::string(program.name) + "peak_MB"] = medians.back().peakMegabytes;
  }
  if (medians.size() == 2) return;
  const auto peers = std::span(medians).subspan(2);
  const auto faster = std::ranges::min_element(peers, {}, &Outcome::cpuSeconds);
  const auto smaller = std::ranges::min_element(peers, {}, &Outcome::peakMegabytes);
  state.counters["time_vs_faster_peer"] = medians[0].cpuSeconds / faster->cpuSeconds;
  state.counters["memory_vs_lower_peer"] = medians[0].peakMegabytes / smaller->peakMegabytes;
}

// More runs where a run is short and its time the most exposed to noise.
BENCHMARK(LoadAgainstPeers)->Arg(1000)->Iterations(41)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(LoadAgainstPeers)->Arg(10000)->Iterations(9)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(LoadAgainstPeers)->Arg(100000)->Iterations(3)->UseManualTime()->Unit(
    benchmark::kMillisecond);

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
