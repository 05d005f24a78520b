#include "programs/report/report_outputs.h"

#include "ADVICE_PERF/file_replace.h"

#include <filesystem>
#include <iostream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// Whether two names reach one file: the same existing file, or the same path
// once made absolute and normal.
bool same_file(const std::string& a, const std::string& b) {
  std::error_code error;
  if (fs::equivalent(a, b, error)) return true;
  const auto normal = [&](const std::string& name) {
    return fs::weakly_canonical(fs::absolute(name, error), error);
  };
  return normal(a) == normal(b);
}

}  // namespace

void check_targets(const std::vector<VIEW_TARGET>& views, const std::vector<std::string>& inputs) {
  int on_standard_output = 0;
  for (size_t i = 0; i < views.size(); ++i) {
    const VIEW_TARGET& view = views[i];
    if (!view.wanted()) continue;
    if (!view.to_file()) {
      if (++on_standard_output > 1)
        throw usage_error("only one view can go to standard output; give " + view.option +
                          " a file");
      continue;
    }
    if (view.target == "-")
      throw usage_error(view.option + " needs a file name, not -; without =FILE it writes to "
                        "standard output");
    for (const std::string& input : inputs)
      if (same_file(view.target, input))
        throw usage_error(view.option + " would write over the input " + input);
    for (size_t j = 0; j < i; ++j)
      if (views[j].to_file() && same_file(view.target, views[j].target))
        throw usage_error(view.option + " and " + views[j].option + " name the same file " +
                          view.target);
  }
}

void emit(const VIEW_TARGET& view, const std::string& text) {
  if (view.to_file())
    replace_file(view.target, text);
  else
    std::cout << text << std::flush;
}
