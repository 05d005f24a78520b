// Replays a corpus through a harness without libFuzzer: every file named on
// the command line, and every file in a directory named there, in name order.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "tests/fuzz/fuzz_support.h"
#include "tests/util/temp_dir.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  std::vector<fs::path> inputs;
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) {
      inputs.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(argv[i]))
      if (entry.is_regular_file()) inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  for (const auto& input : inputs) {
    const std::string data = read_file(input);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(data.data()), data.size());
  }
  std::printf("replayed %zu inputs\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
