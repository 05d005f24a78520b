#pragma once
// What a series shows when it is over: the report of both documents as
// advzorv-report prints it, the views asked for, and what is missing.

#include "programs/series/series.h"

#include <iosfwd>
#include <string>

// The files that take the views of the documents, "" for those not asked for.
struct SERIES_EXPORTS {
  std::string html;      // advzorv-report --html
  std::string json;      // advzorv-report --json
  std::string markdown;  // advzorv-report --markdown
};

// Prints the report of both documents to report (coloured as advzorv-report
// colours it), writes the views asked for and, after a series that ended,
// checks that the chart holds a bar for every value. Problems go to messages;
// false when there was one.
bool show_series_results(const SERIES_PLAN& plan, const SERIES_RESULT& result,
                         const SERIES_EXPORTS& exports, std::ostream& report,
                         std::ostream& messages);

// Tells on messages which signal stopped the series and what it recorded.
void tell_stop(const SERIES_PLAN& plan, const SERIES_RESULT& result, std::ostream& messages);
