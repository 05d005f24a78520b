#pragma once
// What changed between two links, section by section, and in code size: as a
// terminal table, as JSON and as a Markdown table. The sources name the link
// files in headings.
// The JSON's keys are an interface, described by doc/report_diff.schema.json.

#include "programs/views/link_sizes.h"

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>

void print_diff(std::ostream& out, const SIZE_DIFF& diff, const std::string& old_source,
                const std::string& new_source);
nlohmann::json diff_json(const SIZE_DIFF& diff);
void print_diff_markdown(std::ostream& out, const SIZE_DIFF& diff, const std::string& old_source,
                         const std::string& new_source);
