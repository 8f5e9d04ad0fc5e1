// Runs each file named, and each file in each folder named, once through the fuzz target, so that
// the corpus runs as a plain test under any compiler. An input that fails ends the process.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> InputsOf(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int index = 1; index < argc; ++index) {
    for (const std::filesystem::path& input : InputsOf(argv[index])) {
      std::ifstream file(input, std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(file)),
                              std::istreambuf_iterator<char>());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  std::printf("%zu inputs replayed\n", replayed);
  return replayed == 0 ? 1 : 0;
}
