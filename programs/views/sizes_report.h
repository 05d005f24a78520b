#pragma once
// Code size by logical group of one link: as a terminal table, as JSON and as
// a Markdown table. source names the link file in headings.
// The JSON's keys are an interface, described by doc/report_sizes.schema.json.

#include "programs/views/link_sizes.h"

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>

void print_sizes(std::ostream& out, const SIZE_TABLE& table, const std::string& source);
nlohmann::json sizes_json(const SIZE_TABLE& table);
void print_sizes_markdown(std::ostream& out, const SIZE_TABLE& table, const std::string& source);
