// The rules that decide what the advice document says, from the build's
// shell options, the link data and the entries of the last run.
#include "ADVICE_PERF/advice.h"

#include "ADVICE_PERF/build_settings.h"
#include "ADVICE_PERF/link_data.h"
#include "DIAG/messages.h"

#include <cstdlib>
#include <memory>
#include <string>

void ADVICE::update() {
  current_settings();
  // A benchmark event leaves the other advice as the last plain run left it.
  if (tool_option_given(option_obj::BENCHMARK__EVENT)) return;
  advice_option_settings();
  advice_linker();
  advice_perf_results();
}

void ADVICE::current_settings() {
  remove_advice_type("curr_setting");
  std::string text = "advice: Current optimization/debug settings:";
  auto add_setting = [&](const std::string& option, const std::string& setting) {
    text += setting;
    settings.emplace(option, setting);
  };
  if (shell_option_set(option_obj_shell::OPT_LEVEL)) {
    const int level = opt_level();
    add_setting("--opt_level", "  --opt_level=" + (level == -1 ? "off" : std::to_string(level)));
  }
  if (const int goal = size_speed_goal(); goal >= 0)
    add_setting("--opt_for_speed", "  --opt_for_speed=" + std::to_string(goal));
  if (shell_option_set(option_obj_shell::SYMDEBUG__DWARF)) {
    text += "    -g";
    settings.emplace("--symdebug:dwarf", "");
  }
  add_advice("00000", text, "curr_setting", "", "", "");
}

void ADVICE::advice_option_settings() {
  remove_advice_type("opt_setting");
  const int level = opt_level();
  std::string note;
  if (shell_option_set(option_obj_shell::SYMDEBUG__DWARF))
    note = level == 3 ? " and debug ability will decrease" : " NOTE: debug ability will decrease.";

  auto recommend = [&](DIAGNOSTIC&& diag, const char* value) {
    emit_advice(diag, "opt_setting", "--opt_level", value, "gotoBuildOption:--opt_level");
  };
  if (level < 0)
    recommend(DIAG::shell_no_optimization_use3(__FILE__, __LINE__, note.c_str()), "3");
  else if (level <= 2)
    recommend(DIAG::shell_low_optimization_use3(__FILE__, __LINE__, note.c_str()), "3");
  else if (level == 3)
    recommend(DIAG::shell_optimization3_use4(__FILE__, __LINE__, note.c_str()), "4");
}

// Proposes the benchmark series once in a document's life, after a clean link
// made since the document was last written, unless the build is at the
// fastest goal already.
void ADVICE::advice_linker() {
  if (link_advice_flag) return;
  if (size_speed_goal() >= 5) return;
  if (link_data.get_link_time() < timestamp) return;
  if (link_data.get_link_errors() != 0) return;
  link_advice_flag = true;
  DIAG::shell_use_tunewise diag(__FILE__, __LINE__);
  emit_advice(diag, "build_run", "", "", "runTunewise");
}

// Takes the series' result back once the build uses the recommended value.
void ADVICE::advice_perf_results() {
  const auto results = find_advice_type("build_results");
  if (results == entries.end()) return;
  if (std::to_string(size_speed_goal()) == results->second.value) entries.erase(results);
}

void ADVICE::advice_build_results(const std::string& option, const std::string& value) {
  DIAG::shell_tunewise_results diag(__FILE__, __LINE__, value.c_str());
  emit_advice(diag, "build_results", option, value, "gotoBuildOption:--opt_for_speed");
}

void ADVICE::emit_advice(DIAGNOSTIC& diag, const std::string& advice_type,
                         const std::string& option, const std::string& value,
                         const std::string& action) {
  const std::string code = std::to_string(diag.info->code);
  const std::unique_ptr<char, decltype(&std::free)> text(diag.get_sp_buffer(), &std::free);
  add_advice(code, "advice #" + code + "-D: " + (text ? text.get() : ""), advice_type, option,
             value, action);
}
