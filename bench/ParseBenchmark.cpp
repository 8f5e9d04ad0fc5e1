// Parsing speed and peak memory on a 50 MB directory of small elements in items, in explicit and
// in implicit VR, measured in one run against reading the same bytes from the page cache and
// against dcmdump of the same file. For the peaks, dcmdump and this executable with --parse-once
// FILE run as child processes under bench/time_peak.sh, so that each peak is that process's own.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/encoding/FileWriter.h"
#include "engine/parsing/FileParser.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

constexpr std::uint32_t kTargetFileSize = 50'000'000;
// About the size of an IMAGE record below, item header included, in explicit VR.
constexpr std::uint32_t kRecordSize = 230;

std::unique_ptr<VR> ImageRecord(std::uint32_t index) {
  auto record = std::make_unique<VRSequenceItem>("", kItemGroup, kItem, 0);
  const std::string number = std::to_string(index);
  record->Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, index), true);
  record->Append(std::make_unique<UnsignedShortVR>("US", 0x0004, 0x1410, 2, std::uint16_t{0xFFFF}),
                 true);
  record->Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1420, 4, 0u), true);
  record->Append(MakeText("CS", 0x0004, 0x1430, "IMAGE"), true);
  record->Append(MakeText("CS", 0x0004, 0x1500, "DICOM\\PA0\\ST0\\SE0\\IM" + number), true);
  record->Append(MakeText("UI", 0x0004, 0x1510, "1.2.840.10008.5.1.4.1.1.7"), true);
  record->Append(MakeText("UI", 0x0004, 0x1511, "1.3.6.1.4.1.58217.2024.3.9.12." + number), true);
  record->Append(MakeText("UI", 0x0004, 0x1512, "1.2.840.10008.1.2.1"), true);
  record->Append(MakeText("DA", 0x0008, 0x0023, "20240309"), true);
  record->Append(MakeText("IS", 0x0020, 0x0013, std::to_string(index % 1000)), true);
  return record;
}

void WriteDirectory(const std::string& path, SyntaxRecord syntax) {
  DicomData data(true);
  data.Insert(MakeText("UI", 0x0002, 0x0002, "1.2.840.10008.1.3.10"));
  data.Insert(MakeText("CS", 0x0004, 0x1130, "BENCHMARK"));
  auto records = std::make_unique<VRSequence>("SQ", 0x0004, 0x1220, 0);
  for (std::uint32_t index = 0; index < kTargetFileSize / kRecordSize; ++index) {
    records->Append(ImageRecord(index), false);
  }
  data.Insert(std::move(records));
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, syntax, "");
  writer.WriteToFile(halvorine::ToWide(path));
}

std::size_t ParseFile(const std::string& path) {
  FileParser parser;
  parser.Open(halvorine::ToWide(path));
  DicomData data(false);
  parser.Parse(data);
  return data.Elements().size();
}

// What a command printed on its standard output.
std::string OutputOf(const std::string& command) {
  std::string output;
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  for (int letter; (letter = std::fgetc(pipe)) != EOF;) output += static_cast<char>(letter);
  pclose(pipe);
  return output;
}

void BM_ReadFromPageCache(benchmark::State& state, const std::string& path) {
  const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
  std::vector<char> bytes(size);
  for (auto _ : state) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    benchmark::DoNotOptimize(std::fread(bytes.data(), 1, size, file));
    std::fclose(file);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void BM_Parse(benchmark::State& state, const std::string& path) {
  for (auto _ : state) benchmark::DoNotOptimize(ParseFile(path));
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(path)));
}

// A command run once in a child process under bench/time_peak.sh. Its CPU time, which a busy
// machine disturbs less than its wall time, is the benchmark's time; the wall time and the peak
// resident memory (the child's getrusage) are counters.
void BM_InAChild(benchmark::State& state, const std::string& command, const std::string& path) {
  double wall = 0, user = 0, system = 0, peakKilobytes = 0;
  for (auto _ : state) {
    const std::string output = OutputOf(HALVORINE_BENCH_DIR "/time_peak.sh " + command);
    if (std::sscanf(output.c_str(), "%lf %lf %lf %lf", &wall, &user, &system, &peakKilobytes) !=
        4) {
      state.SkipWithError("the command didn't run; dcmtk comes with tools/setup.sh");
      return;
    }
    state.SetIterationTime(user + system);
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(path)));
  state.counters["wall_ms"] = wall * 1000;
  state.counters["peak_MB"] = peakKilobytes / 1024;
}

int ParseOnce(const std::string& path) {
  DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
  benchmark::DoNotOptimize(ParseFile(path));
  return 0;
}

}  // namespace
}  // namespace DicomEngine

int main(int argc, char** argv) {
  using namespace DicomEngine;
  if (argc == 3 && std::string_view(argv[1]) == "--parse-once") return ParseOnce(argv[2]);
  benchmark::Initialize(&argc, argv);
  DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
  const std::string self = std::filesystem::canonical("/proc/self/exe");
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  const std::string pid = std::to_string(getpid());
  const std::pair<std::string, SyntaxRecord> syntaxes[] = {{"explicit", kExplicitLittleEndian},
                                                           {"implicit", kImplicitLittleEndian}};
  std::vector<std::string> files;
  for (const auto& [name, syntax] : syntaxes) {
    const std::string path = folder / ("halvorine-parse-" + pid + "-" + name + ".dcm");
    WriteDirectory(path, syntax);
    files.push_back(path);
    benchmark::RegisterBenchmark(("ReadFromPageCache/" + name).c_str(), BM_ReadFromPageCache, path)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("Parse/" + name).c_str(), BM_Parse, path)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("ParseInAChild/" + name).c_str(), BM_InAChild,
                                 "'" + self + "' --parse-once '" + path + "'", path)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(3);
    benchmark::RegisterBenchmark(("DcmdumpInAChild/" + name).c_str(), BM_InAChild,
                                 "dcmdump '" + path + "'", path)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(1);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  for (const std::string& path : files) std::filesystem::remove(path);
  return 0;
}
