#pragma once
// The report as one self-contained XHTML page: the advice list and the chart
// as inline SVG, with inline CSS, no script and nothing to fetch.

#include <string>

class ADVICE;
class PERF_RESULTS;

// Writes the page to file_name, replacing it; failures throw xml_parser_error.
void write_html_report(const std::string& file_name, const ADVICE& advice,
                       const PERF_RESULTS& results);
