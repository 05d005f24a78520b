#pragma once
// The report as text for a terminal: when each document was written, the
// current settings, the advice entries and the chart as horizontal bars.

#include <cstddef>
#include <iosfwd>

class ADVICE;
class PERF_RESULTS;

// Writes the report to out; with colour, bars and meanings carry ANSI colours.
// Advice is wrapped to width columns; 0 takes the width from COLUMNS, else
// from the terminal on standard output, else 80.
void print_report(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results, bool colour,
                  size_t width = 0);
