// Handing options on to the tools of the toolchain: the table says per
// option which tools take it and under which texts; the history gives the
// order of the tool's command line.
#include <algorithm>

#include "DIAG/messages.h"
#include "UTIL/runcmd.h"
#include "options/option_engine.h"

namespace {

bool meet(const std::vector<int>& sorted_classes, const std::vector<int>& sorted_list) {
  std::vector<int> common;
  std::set_intersection(sorted_classes.begin(), sorted_classes.end(), sorted_list.begin(),
                        sorted_list.end(), std::back_inserter(common));
  return !common.empty();
}

}  // namespace

std::vector<std::string> option_engine::passto(int id, tool_name tool,
                                               const hist_argument& arg) const {
  std::vector<std::string> texts;
  const passto_entry* begin = table_->passto_fn_table;
  const passto_entry* end = begin + table_->passto_count;
  const passto_entry* entry = std::lower_bound(
      begin, end, id, [](const passto_entry& e, int wanted) { return e.id < wanted; });
  if (entry == end || entry->id != id) return texts;
  for (const hand_on* target = entry->targets; target->tool >= 0; ++target) {
    if (target->tool != tool) continue;
    std::string text = rot13(target->text);
    if (!arg.text.empty()) text += "=" + arg.text;
    texts.push_back(std::move(text));
  }
  return texts;
}

void option_engine::add_opts_for_tool(argv_list& list) {
  add_opts_for_tool(list, {0}, {});
}

void option_engine::add_opts_for_tool(argv_list& list, std::vector<int> exclude) {
  add_opts_for_tool(list, {0}, std::move(exclude));
}

void option_engine::add_opts_for_tool(argv_list& list, std::vector<int> include,
                                      std::vector<int> exclude) {
  auto by_cmd = tool_cmd_map().find(list.command);
  if (by_cmd == tool_cmd_map().end()) {
    DIAG::optgen_add_tool_opt_unmatched_cmd diag(__FILE__, __LINE__, list.command.c_str());
    report_diagnostic(diag);
    return;
  }
  tool_name tool = by_cmd->second;
  std::map<tool_name, int> fileopts = tn_fileopt_map();
  auto own_fileopt = fileopts.find(tool);
  int fileopt = own_fileopt == fileopts.end() ? -1 : own_fileopt->second;
  std::sort(include.begin(), include.end());
  std::sort(exclude.begin(), exclude.end());
  std::vector<std::string> noted;
  for (const auto& [id, arg] : history) {
    std::vector<int> classes = class_list_for_option(id);
    if (!meet(classes, include) || meet(classes, exclude)) continue;
    if (id == fileopt) {
      noted.push_back(arg.text);
    } else {
      std::vector<std::string> texts = passto(id, tool, arg);
      noted.insert(noted.end(), texts.begin(), texts.end());
    }
  }
  for (const std::string& text : noted)
    list.add(text);
}
