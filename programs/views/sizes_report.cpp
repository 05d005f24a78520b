#include "programs/views/sizes_report.h"

#include "programs/views/markdown_text.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

using nlohmann::json;

namespace {

// "yes", or "no: " and why not.
std::string counts_text(group_count count) {
  return count == group_count::counted ? "yes" : std::string("no: ") + count_word(count);
}

}  // namespace

void print_sizes(std::ostream& out, const SIZE_TABLE& table, const std::string& source) {
  size_t name_width = std::string_view("Code size").size(), id_width = 2;
  for (const GROUP_SIZE& group : table.groups) {
    name_width = std::max(name_width, group.name.size());
    id_width = std::max(id_width, group.id.size());
  }
  const auto row = [&](const std::string& name, const std::string& id, const std::string& size,
                       const std::string& counts) {
    out << "  " << std::left << std::setw(static_cast<int>(name_width)) << name << "  "
        << std::setw(static_cast<int>(id_width)) << id << "  " << std::right << std::setw(10)
        << size << "  " << counts << '\n';
  };
  out << "Code size by section of " << source << ":\n";
  row("Section", "Id", "Bytes", "Counts");
  for (const GROUP_SIZE& group : table.groups)
    row(group.name, group.id, std::to_string(group.size), counts_text(group.count));
  row("Code size", "", std::to_string(table.code_size), "");
}

json sizes_json(const SIZE_TABLE& table) {
  json groups = json::array();
  for (const GROUP_SIZE& group : table.groups) {
    const bool counted = group.count == group_count::counted;
    groups.push_back({{"id", group.id},
                      {"name", group.name},
                      {"size", group.size},
                      {"counts", counted},
                      {"why_not", counted ? json(nullptr) : json(count_word(group.count))}});
  }
  return {{"format", "advzorv-report sizes"},
          {"format_version", 1},
          {"code_size", table.code_size},
          {"groups", groups}};
}

void print_sizes_markdown(std::ostream& out, const SIZE_TABLE& table, const std::string& source) {
  out << "### Code size by section of " << markdown_escape(source) << "\n\n";
  table_row(out, {"Section", "Id", "Bytes", "Counts"});
  out << "| --- | --- | ---: | --- |\n";
  for (const GROUP_SIZE& group : table.groups)
    table_row(out, {markdown_escape(group.name), markdown_escape(group.id),
                    std::to_string(group.size), markdown_escape(counts_text(group.count))});
  table_row(out, {"**Code size**", "", "**" + std::to_string(table.code_size) + "**", ""});
}
