#pragma once
// The report as text for a terminal: the current settings, the advice entries
// and the chart as horizontal bars.

#include <iosfwd>

class ADVICE;
class PERF_RESULTS;

// Writes the report to out; with colour, bars and meanings carry ANSI colours.
void print_report(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results,
                  bool colour);
