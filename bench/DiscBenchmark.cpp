// A disc against cp -r of the same files to the same file system, measured in one run, and the
// writer's own cost: the DICOMDIR of many image records with no image to copy.
//
// Trees have patients of one study with ten series of 1,000 images each, so that no array passes
// the 10,000 names of a level.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/FileSystem.h"
#include "platform/SafeArrayPtr.h"
#include "support/TextConversion.h"
#include "writing/DiscBuilder.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

constexpr int kImagesPerSeries = 1000;
constexpr int kSeriesPerStudy = 10;
constexpr int kImagesPerPatient = kImagesPerSeries * kSeriesPerStudy;
constexpr int kDiscImages = 10'000;
constexpr std::size_t kImageSize = 64 * 1024;

template <class Interface>
ComPtr<Interface> New(REFCLSID clsid, REFIID iid) {
  ComPtr<IClassFactory> factory;
  ComPtr<Interface> object;
  if (DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Receive())) !=
          S_OK ||
      factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(object.Receive())) != S_OK) {
    std::abort();
  }
  return object;
}

BString Bstr(const std::string& text) { return BString::Copy(ToWide(text)); }

SafeArrayPtr ArrayOf(const std::vector<IUnknown*>& objects) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(objects.size())));
  for (LONG index = 0; index < static_cast<LONG>(objects.size()); ++index) {
    SafeArrayPutElement(array.get(), &index, objects[index]);
  }
  return array;
}

// Image n names source(n).
template <class Source>
SafeArrayPtr MakeTree(int imageCount, Source source) {
  std::vector<ComPtr<IDicomDirPatient>> patients;
  std::vector<IUnknown*> patientList;
  for (int first = 0; first < imageCount; first += kImagesPerPatient) {
    std::vector<IUnknown*> seriesList;
    std::vector<ComPtr<IDicomDirSeries>> series;
    for (int start = first; start < first + kImagesPerPatient && start < imageCount;
         start += kImagesPerSeries) {
      std::vector<ComPtr<IDicomDirImage>> images;
      std::vector<IUnknown*> imageList;
      for (int n = start; n < start + kImagesPerSeries && n < imageCount; ++n) {
        auto image = New<IDicomDirImage>(CLSID_DicomDirImage, IID_IDicomDirImage);
        image->SetSOPClassUID(Bstr("1.2.840.10008.5.1.4.1.1.7").get());
        image->SetSOPInstanceUID(Bstr("1.3.6.1.4.1.58217.1." + std::to_string(n)).get());
        image->SetTransferSyntaxUID(Bstr("1.2.840.10008.1.2.1").get());
        image->SetInstanceNumber(n);
        image->SetImageFilename(Bstr(source(n)).get());
        imageList.push_back(image.get());
        images.push_back(std::move(image));
      }
      auto oneSeries = New<IDicomDirSeries>(CLSID_DicomDirSeries, IID_IDicomDirSeries);
      oneSeries->SetModality(Bstr("OT").get());
      oneSeries->SetSeriesInstUID(Bstr("1.3.6.1.4.1.58217.2." + std::to_string(start)).get());
      oneSeries->SetImages(ArrayOf(imageList).get());
      seriesList.push_back(oneSeries.get());
      series.push_back(std::move(oneSeries));
    }
    auto study = New<IDicomDirStudy>(CLSID_DicomDirStudy, IID_IDicomDirStudy);
    study->SetStudyInstUID(Bstr("1.3.6.1.4.1.58217.3." + std::to_string(first)).get());
    study->SetStudyDate(45360.5);
    study->SetSeries(ArrayOf(seriesList).get());
    auto patient = New<IDicomDirPatient>(CLSID_DicomDirPatient, IID_IDicomDirPatient);
    patient->SetDicomPatName(Bstr("Doe^" + std::to_string(first)).get());
    patient->SetStudies(ArrayOf({study.get()}).get());
    patientList.push_back(patient.get());
    patients.push_back(std::move(patient));
  }
  return ArrayOf(patientList);
}

// All that the benchmarks write lies in one folder, removed at the process's end. Nothing is
// removed while they run: ext4 passes over recently deleted inodes when it allocates new ones, and
// that search would land on whichever copy runs next.
class Scratch {
 public:
  Scratch() {
    const char* base = getenv("TMPDIR");
    folder_ =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/halvorine-bench-XXXXXX";
    if (mkdtemp(folder_.data()) == nullptr) std::abort();
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { fs::remove_all(folder_); }

  // A new, empty folder, with no writeback of earlier ones still under way.
  static std::string NewFolder() {
    static Scratch scratch;
    const std::string folder = scratch.folder_ + "/" + std::to_string(scratch.made_++);
    fs::create_directory(folder);
    sync();
    return folder;
  }

 private:
  std::string folder_;
  int made_ = 0;
};

// 10,000 files of 64 KB, made once for the process.
const std::string& ImageSources() {
  static const std::string folder = [] {
    const std::string sources = Scratch::NewFolder();
    const std::string block(kImageSize, '\x5A');
    for (int n = 0; n < kDiscImages; ++n) {
      std::ofstream(sources + "/" + std::to_string(n), std::ios::binary) << block;
    }
    return sources;
  }();
  return folder;
}

void BuildDisc(FileSystem& fileSystem, const std::string& folder, SAFEARRAY* tree,
               benchmark::State& state) {
  BString output;
  try {
    DiscBuilder(fileSystem, SettingsAccess::Process())
        .BuildDisc(Bstr(folder).get(), Bstr("Disc").get(), tree, output.Receive(), VARIANT_FALSE,
                   nullptr);
  } catch (const std::exception& failure) {
    state.SkipWithError(failure.what());
  }
}

void BM_DiscOf10000Images(benchmark::State& state) {
  const std::string& sources = ImageSources();
  const SafeArrayPtr tree =
      MakeTree(kDiscImages, [&](int n) { return sources + "/" + std::to_string(n); });
  for (auto _ : state) {
    state.PauseTiming();
    const std::string target = Scratch::NewFolder();
    state.ResumeTiming();
    BuildDisc(FileSystem::Posix(), target, tree.get(), state);
  }
  state.SetBytesProcessed(state.iterations() * kDiscImages * kImageSize);
}

void BM_CopyRecursiveOf10000Images(benchmark::State& state) {
  const std::string& sources = ImageSources();
  for (auto _ : state) {
    state.PauseTiming();
    const std::string command = "cp -r '" + sources + "' '" + Scratch::NewFolder() + "/copy'";
    state.ResumeTiming();
    if (std::system(command.c_str()) != 0) state.SkipWithError("cp -r failed");
  }
  state.SetBytesProcessed(state.iterations() * kDiscImages * kImageSize);
}

// Makes the folders but copies nothing: the walk, the records, the links and DICOMDIR alone.
class NoCopies final : public FileSystem {
 public:
  int MakeDirectory(const std::string& path) override {
    return FileSystem::Posix().MakeDirectory(path);
  }
  int CopyFileNoReplace(const std::string&, const std::string&) override { return 0; }
};

void BM_DirectoryOfImageRecords(benchmark::State& state) {
  const auto imageCount = static_cast<int>(state.range(0));
  const SafeArrayPtr tree = MakeTree(imageCount, [](int) { return std::string("/none"); });
  NoCopies noCopies;
  std::uintmax_t fileSize = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::string target = Scratch::NewFolder();
    state.ResumeTiming();
    BuildDisc(noCopies, target, tree.get(), state);
    state.PauseTiming();
    fileSize = fs::file_size(target + "/Disc/DICOMDIR");
    state.ResumeTiming();
  }
  const int patients = (imageCount + kImagesPerPatient - 1) / kImagesPerPatient;
  const int records = imageCount + imageCount / kImagesPerSeries + 2 * patients;
  state.counters["records/s"] =
      benchmark::Counter(static_cast<double>(records) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fileSize));
  state.SetComplexityN(imageCount);
}

BENCHMARK(BM_DiscOf10000Images)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_CopyRecursiveOf10000Images)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);
BENCHMARK(BM_DirectoryOfImageRecords)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Arg(10'000)
    ->Arg(50'000)
    ->Arg(100'000)
    ->Complexity(benchmark::oN);

}  // namespace
}  // namespace halvorine

BENCHMARK_MAIN();
