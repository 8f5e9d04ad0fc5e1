// Encoding speed against memcpy of the same number of bytes, measured in one run: a data set of
// small elements nested in items as directory records are, and one 100 MB binary element.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "engine/elements/DicomData.h"
#include "engine/elements/VRBinary.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/encoding/FileWriter.h"

namespace DicomEngine {
namespace {

constexpr std::uint32_t kBigElementSize = 100'000'000;
constexpr int kElementsPerRecord = 10;

// An IMAGE record of ten elements: offsets and flags, short texts and UIDs.
std::unique_ptr<VR> MakeRecord(int index) {
  auto record = std::make_unique<VRSequenceItem>("", kItemGroup, kItem, 0);
  const auto offset = static_cast<std::uint32_t>(index) * 220;
  record->Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, offset), true);
  record->Append(std::make_unique<UnsignedShortVR>("US", 0x0004, 0x1410, 2, std::uint16_t{0xFFFF}),
                 true);
  record->Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1420, 4, 0u), true);
  record->Append(MakeText("CS", 0x0004, 0x1430, "IMAGE"), true);
  record->Append(MakeText("CS", 0x0004, 0x1500, "DICOM\\PA0\\ST0\\SE0\\IM" + std::to_string(index)),
                 true);
  record->Append(MakeText("UI", 0x0004, 0x1510, "1.2.840.10008.5.1.4.1.1.7"), true);
  record->Append(
      MakeText("UI", 0x0004, 0x1511, "1.3.6.1.4.1.58217.2024.3.9.12.0.0." + std::to_string(index)),
      true);
  record->Append(MakeText("UI", 0x0004, 0x1512, "1.2.840.10008.1.2.1"), true);
  record->Append(MakeText("DA", 0x0008, 0x0023, "20240309"), true);
  record->Append(MakeText("IS", 0x0020, 0x0013, std::to_string(index % 1000)), true);
  return record;
}

// The file-set header and elementCount elements in records, as a DICOMDIR of that size holds.
void FillDirectory(DicomData& data, int elementCount) {
  data.Insert(MakeText("UI", 0x0002, 0x0002, "1.2.840.10008.1.3.10"));
  data.Insert(MakeText("CS", 0x0004, 0x1130, "HALVORINE"));
  auto records = std::make_unique<VRSequence>("SQ", 0x0004, 0x1220, 0);
  for (int index = 0; index < elementCount / kElementsPerRecord; ++index) {
    records->Append(MakeRecord(index), false);
  }
  data.Insert(std::move(records));
}

std::uint32_t Encode(DicomData& data) {
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, kExplicitLittleEndian, "");
  benchmark::DoNotOptimize(writer.GetBuffer());
  return writer.GetCursor();
}

void CopyBytes(benchmark::State& state, std::size_t size) {
  const std::vector<char> source(size, 'x');
  std::vector<char> target(size, 'y');
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), size);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void BM_EncodeSmallElements(benchmark::State& state) {
  DicomData data(true);
  FillDirectory(data, static_cast<int>(state.range(0)));
  std::uint32_t size = 0;
  for (auto _ : state) size = Encode(data);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
  state.SetComplexityN(state.range(0));
  state.counters["stream_bytes"] = size;
}
BENCHMARK(BM_EncodeSmallElements)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// The same number of bytes as the stream of a million small elements.
void BM_MemcpySmallElementsStream(benchmark::State& state) {
  DicomData data(true);
  FillDirectory(data, 1'000'000);
  CopyBytes(state, Encode(data));
}
BENCHMARK(BM_MemcpySmallElementsStream)->Unit(benchmark::kMillisecond);

// A new writer each time: the block is allocated and touched for the first time in the loop.
void BM_EncodeBigElement(benchmark::State& state) {
  DicomData data(true);
  auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kBigElementSize);
  std::memset(block.get(), 0x5A, kBigElementSize);
  data.Insert(std::make_unique<VRBinary>("OB", 0x7FE0, 0x0010, kBigElementSize, std::move(block)));
  std::uint32_t size = 0;
  for (auto _ : state) size = Encode(data);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
}
BENCHMARK(BM_EncodeBigElement)->Unit(benchmark::kMillisecond);

void BM_MemcpyBigElement(benchmark::State& state) { CopyBytes(state, kBigElementSize); }
BENCHMARK(BM_MemcpyBigElement)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace DicomEngine

BENCHMARK_MAIN();
