// How fast the option scanner applies the tokens of a build's command line to
// a fresh shell option object, and how long building that object takes.
#include "options/optobj_shell.h"

#include <benchmark/benchmark.h>

namespace {

// Tokens as they stand in a command file, less their first dash.
constexpr const char* kTokens[] = {
    "-opt_level=3",
    "O2",
    "-opt_for_speed=2",
    "mf4",
    "ms",
    "g",
    "-size_speed_goal=low_risk_performance",
    "-OPT_LEVEL=off",
    "-no_high_level_opt",
};

void BM_build_shell_options(benchmark::State& state) {
  for (auto _ : state) {
    option_obj_shell options(true);
    benchmark::DoNotOptimize(options.option_state.data());
  }
}

void BM_scan_shell_tokens(benchmark::State& state) {
  option_obj_shell options(true);
  for (auto _ : state)
    for (const char* token : kTokens)
      benchmark::DoNotOptimize(options.process_option(token, nullptr));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * std::size(kTokens)));
}

}  // namespace

BENCHMARK(BM_build_shell_options);
BENCHMARK(BM_scan_shell_tokens);
