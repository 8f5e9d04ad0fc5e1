// Loading the tag dictionary, once per process at the first DICOMDIR load, into a fresh
// dictionary per iteration: the shipped file, which its digest finds in the build's table, and
// the same text with one byte more, which is parsed.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/dictionary/DicomDictionary.h"
#include "platform/ModulePath.h"

namespace DicomEngine {
namespace {

// Paths with a separator, which the dictionary takes unchanged.
const std::string kShippedFile = halvorine::GetModuleDirectory() + "dicom_dictionary.txt";

std::string ParsedFile() {
  const std::string path =
      (std::filesystem::temp_directory_path() / "halvorine-dictionary-bench.txt").string();
  std::ofstream(path, std::ios::binary) << std::ifstream(kShippedFile).rdbuf() << "\n";
  return path;
}

void LoadDictionary(benchmark::State& state, const std::string& path) {
  for (auto _ : state) {
    DicomDictionary dictionary;
    dictionary.LoadDictionary(path);
    benchmark::DoNotOptimize(dictionary.FindVR(0x7FE0, 0x0010));
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(path)));
}

void BM_LoadShippedDictionary(benchmark::State& state) { LoadDictionary(state, kShippedFile); }
BENCHMARK(BM_LoadShippedDictionary)->Unit(benchmark::kMicrosecond);

void BM_ParseDictionary(benchmark::State& state) {
  static const std::string path = ParsedFile();
  LoadDictionary(state, path);
}
BENCHMARK(BM_ParseDictionary)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace DicomEngine

BENCHMARK_MAIN();
