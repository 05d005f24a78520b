#include "programs/views/diff_report.h"

#include "programs/views/markdown_text.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <ostream>

using nlohmann::json;

namespace {

std::string size_text(const std::optional<uint64_t>& size) {
  return size ? std::to_string(*size) : "-";
}

std::string signed_text(int64_t delta) {
  return (delta > 0 ? "+" : "") + std::to_string(delta);
}

// "+1.25%", or "" when there is no percentage (no old size).
std::string percent_text(const std::optional<double>& percent) {
  if (!percent) return "";
  char text[32];
  std::snprintf(text, sizeof text, "%+.2f%%", *percent);
  return text;
}

std::optional<double> section_percent(const SECTION_CHANGE& section) {
  if (!section.old_size || !section.new_size) return std::nullopt;
  return percent_change(*section.old_size, *section.new_size);
}

std::optional<double> code_size_percent(const SIZE_DIFF& diff) {
  return percent_change(diff.old_code_size, diff.new_code_size);
}

// "Code size: 7008 -> 7300 bytes, +292 (+4.17%)"
std::string code_size_line(const SIZE_DIFF& diff, const char* arrow) {
  std::string line = "Code size: " + std::to_string(diff.old_code_size) + ' ' + arrow + ' ' +
                     std::to_string(diff.new_code_size) + " bytes, " +
                     signed_text(diff.code_size_delta());
  const std::string percent = percent_text(code_size_percent(diff));
  return percent.empty() ? line : line + " (" + percent + ")";
}

// The change, with a note for sections that don't count toward the code size.
std::string change_text(const SECTION_CHANGE& section) {
  return std::string(section.change()) + (section.counts ? "" : " (not in code size)");
}

json optional_json(const std::optional<uint64_t>& size) {
  return size ? json(*size) : json(nullptr);
}

json optional_json(const std::optional<double>& percent) {
  return percent ? json(*percent) : json(nullptr);
}

}  // namespace

void print_diff(std::ostream& out, const SIZE_DIFF& diff, const std::string& old_source,
                const std::string& new_source) {
  size_t name_width = std::string_view("Section").size();
  for (const SECTION_CHANGE& section : diff.sections)
    name_width = std::max(name_width, section.name.size());
  const auto row = [&](const std::string& name, const std::string& old_size,
                       const std::string& new_size, const std::string& delta,
                       const std::string& percent, const std::string& change) {
    out << "  " << std::left << std::setw(static_cast<int>(name_width)) << name << std::right
        << std::setw(12) << old_size << std::setw(12) << new_size << std::setw(12) << delta
        << std::setw(10) << percent << "  " << change << '\n';
  };
  out << "Sections of " << old_source << " -> " << new_source << ":\n";
  row("Section", "Old", "New", "Delta", "%", "Change");
  for (const SECTION_CHANGE& section : diff.sections)
    row(section.name, size_text(section.old_size), size_text(section.new_size),
        signed_text(section.delta()), percent_text(section_percent(section)),
        change_text(section));
  out << code_size_line(diff, "->") << '\n';
}

json diff_json(const SIZE_DIFF& diff) {
  json sections = json::array();
  for (const SECTION_CHANGE& section : diff.sections)
    sections.push_back({{"name", section.name},
                        {"old_size", optional_json(section.old_size)},
                        {"new_size", optional_json(section.new_size)},
                        {"delta", section.delta()},
                        {"percent", optional_json(section_percent(section))},
                        {"change", section.change()},
                        {"counts", section.counts}});
  return {{"format", "advzorv-report diff"},
          {"format_version", 1},
          {"old_code_size", diff.old_code_size},
          {"new_code_size", diff.new_code_size},
          {"code_size_delta", diff.code_size_delta()},
          {"code_size_percent", optional_json(code_size_percent(diff))},
          {"sections", sections}};
}

void print_diff_markdown(std::ostream& out, const SIZE_DIFF& diff, const std::string& old_source,
                         const std::string& new_source) {
  out << "### " << markdown_escape(code_size_line(diff, "\u2192")) << "\n\n"
      << "Sections of " << markdown_escape(old_source) << " \u2192 " << markdown_escape(new_source)
      << ":\n\n";
  table_row(out, {"Section", "Old", "New", "Delta", "%", "Change"});
  out << "| --- | ---: | ---: | ---: | ---: | --- |\n";
  for (const SECTION_CHANGE& section : diff.sections)
    table_row(out, {markdown_escape(section.name), size_text(section.old_size),
                    size_text(section.new_size), markdown_escape(signed_text(section.delta())),
                    markdown_escape(percent_text(section_percent(section))),
                    markdown_escape(change_text(section))});
}
