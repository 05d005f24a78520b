// What the history costs a long command line: N list options, whose entries
// all stay, then N single-valued ones, each replacing its earlier entry;
// against a line of 2N single-valued options alone. The two should grow alike.
#include "options/optobj_shell.h"

#include <benchmark/benchmark.h>

namespace {

constexpr const char* kSingles[] = {"-opt_level=3", "O2", "-opt_for_speed=2", "ms", "g"};

void scan_singles(option_obj_shell& options, int64_t count) {
  for (int64_t i = 0; i < count; ++i)
    options.process_option(kSingles[i % std::size(kSingles)], nullptr);
}

void BM_history_lists_then_singles(benchmark::State& state) {
  for (auto _ : state) {
    option_obj_shell options(true);
    for (int64_t i = 0; i < state.range(0); ++i)
      options.process_option("-include_path=dir", nullptr);
    scan_singles(options, state.range(0));
    benchmark::DoNotOptimize(options.history.data());
  }
  state.SetComplexityN(state.range(0));
}

void BM_history_singles_only(benchmark::State& state) {
  for (auto _ : state) {
    option_obj_shell options(true);
    scan_singles(options, 2 * state.range(0));
    benchmark::DoNotOptimize(options.history.data());
  }
  state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(BM_history_lists_then_singles)->RangeMultiplier(4)->Range(1 << 12, 1 << 16)->Complexity();
BENCHMARK(BM_history_singles_only)->RangeMultiplier(4)->Range(1 << 12, 1 << 16)->Complexity();
