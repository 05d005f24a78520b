#pragma once
// The two documents as a GitHub-flavoured Markdown section, for CI job
// summaries and pull-request comments.

#include <iosfwd>

class ADVICE;
class PERF_RESULTS;

// Writes the current settings, the advice entries as a list and the chart as
// a table with a text bar for each bar.
void print_markdown(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results);
