#pragma once
// The two documents a report shows, read through the document classes and
// never written.

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"

#include <memory>
#include <stdexcept>

struct REPORT_DOCUMENTS {
  std::unique_ptr<ADVICE> advice;
  std::unique_ptr<PERF_RESULTS> results;
};

// A document that is missing, unreadable or not a document of the tool; the
// message names the file and the cause.
class document_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads both documents; throws document_error for the first one that can't be
// shown, and for a document of the other kind than its role asks for. The paths must outlive the returned documents, which own nothing else.
REPORT_DOCUMENTS read_documents(const char* advice_file, const char* results_file);

// Reads link information with the tool's own reader; throws document_error
// when the file is missing, unreadable or not link information. The path must
// outlive the returned object.
std::unique_ptr<LINK_DATA> read_link_file(const char* file_name);
