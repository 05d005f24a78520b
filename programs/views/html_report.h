#pragma once
// The report as one self-contained XHTML page: when each document was written,
// the settings and advice as tables, the chart as bars of inline SVG that fit
// any width, its legend and the same bars as a table, and how to read them.
// Inline CSS, no script, nothing to fetch.

#include <string>

class ADVICE;
class PERF_RESULTS;

// Replaces file_name with the page (a new file renamed over the old one);
// failures throw xml_parser_error.
void write_html_report(const std::string& file_name, const ADVICE& advice,
                       const PERF_RESULTS& results);
