#include "programs/views/report_documents.h"

#include "ADVICE_PERF/document_lock.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>

namespace {

void check_openable(const char* file_name, const char* kind) {
  if (std::ifstream(file_name)) return;
  throw document_error(std::string("cannot read the ") + kind + " document " + file_name + ": " +
                       std::strerror(errno));
}

// Builds one document; the document classes take an unparsable file for an
// empty one, which has no version, and throw on a tree without their frame.
template <typename Document>
std::unique_ptr<Document> read_document(const char* file_name, const char* kind) {
  check_openable(file_name, kind);
  std::unique_ptr<Document> document;
  try {
    document = std::make_unique<Document>(file_name);
  } catch (const std::exception& e) {
    throw document_error(std::string(file_name) + " is not a valid " + kind +
                         " document: " + e.what());
  }
  if (document->get_file_version() < 0)
    throw document_error(std::string(file_name) + " is not an advzorv " + kind + " document");
  return document;
}

}  // namespace

REPORT_DOCUMENTS read_documents(const char* advice_file, const char* results_file) {
  // A run that is updating the documents finishes before they are read, so
  // both come from the same run.
  const DOCUMENT_LOCKS locks({advice_file, results_file}, lock_mode::shared,
                             std::chrono::seconds(60));
  if (!locks.busy_directory().empty())
    throw document_error("another run kept the documents in " + locks.busy_directory() +
                         " locked for 60 seconds");
  REPORT_DOCUMENTS documents;
  documents.advice = read_document<ADVICE>(advice_file, "advice");
  documents.results = read_document<PERF_RESULTS>(results_file, "results");
  return documents;
}
