// How fast fnextopt cuts a large command file into words.
#include "UTIL/cmdfile.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// A command file of `lines` lines mixing plain options, quoted arguments and comments.
std::string command_file_text(int lines) {
  std::string text;
  for (int i = 0; i < lines; ++i) {
    text += "--opt_level=3 -g --define=NAME_" + std::to_string(i) + "=1 ";
    text += "--include_path=\"/some dir/with blanks\" ; trailing comment\n";
    text += "/* block comment */ --opt_for_speed=2 source_" + std::to_string(i) + ".c\n";
  }
  return text;
}

void BM_fnextopt(benchmark::State& state) {
  const std::string text = command_file_text(static_cast<int>(state.range(0)));
  size_t words = 0;
  for (auto _ : state) {
    FILE* stream = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    while (char* word = fnextopt(stream)) {
      ++words;
      std::free(word);
    }
    std::fclose(stream);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
  state.counters["words"] =
      benchmark::Counter(static_cast<double>(words), benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(BM_fnextopt)->Arg(10)->Arg(1000);
