// Loading the shipped tag dictionary, once per process at the first DICOMDIR load, into a fresh
// dictionary per iteration.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "engine/dictionary/DicomDictionary.h"
#include "platform/ModulePath.h"

namespace DicomEngine {
namespace {

// A path with a separator, which the dictionary takes unchanged.
const std::string kShippedFile = halvorine::GetModuleDirectory() + "dicom_dictionary.txt";

void BM_LoadDictionary(benchmark::State& state) {
  for (auto _ : state) {
    DicomDictionary dictionary;
    dictionary.LoadDictionary(kShippedFile);
    benchmark::DoNotOptimize(dictionary.FindVR(0x7FE0, 0x0010));
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(kShippedFile)));
}
BENCHMARK(BM_LoadDictionary)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace DicomEngine

BENCHMARK_MAIN();
