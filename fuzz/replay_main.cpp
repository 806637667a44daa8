// Runs a fuzz target once for each file on the command line and in each folder on it. With any compiler this
// makes the kept corpus a test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> input((std::istreambuf_iterator<char>(file)), {});
  fprintf(stderr, "%s\n", path.c_str());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  LLVMFuzzerInitialize(&argc, &argv);
  std::vector<std::filesystem::path> inputs;
  for (const std::filesystem::path path : std::vector<const char*>(argv + 1, argv + argc)) {
    if (is_directory(path)) {
      inputs.insert(inputs.end(), std::filesystem::directory_iterator(path), {});
    } else {
      inputs.push_back(path);
    }
  }
  for (const std::filesystem::path& path : inputs) Replay(path);
  fprintf(stderr, "%zu inputs replayed\n", inputs.size());
  return inputs.empty() ? 2 : 0;
}
