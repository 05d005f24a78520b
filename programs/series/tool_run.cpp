#include "programs/series/tool_run.h"

#include "programs/series/child_process.h"

#include <filesystem>
#include <vector>

#include <unistd.h>

std::string advzorv_beside_this_program() {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "advzorv").string();
}

int run_tool(const std::string& advzorv, const SERIES_FILES& files, const TOOL_EVENT& event) {
  const bool options_written = access(files.linker_options.c_str(), F_OK) == 0;
  const std::string empty_file = "/dev/null";
  CHILD_RUN run;
  run.argv = {advzorv,
              "--advice_file=" + files.advice,
              "--benchmarks_file=" + files.results,
              "--xml_link_info=" + (event.without_link ? empty_file : files.link_info),
              "--linker_options_file=" +
                  (event.name == "start" && !options_written ? empty_file : files.linker_options),
              "--benchmark:event=" + event.name,
              "--benchmark:option=" + event.option};
  if (event.name != "start") run.argv.push_back("--benchmark:option_value=" + event.value);
  run.output_fd = STDERR_FILENO;
  return run_child(run, [] {}).status;
}
