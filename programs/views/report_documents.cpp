#include "programs/views/report_documents.h"

#include "ADVICE_PERF/document_lock.h"
#include "ADVICE_PERF/xml_select.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>

namespace {

void check_openable(const char* file_name, const char* kind) {
  if (std::ifstream(file_name)) return;
  throw document_error(std::string("cannot read ") + kind + " " + file_name + ": " +
                       std::strerror(errno));
}

// The elements that only one kind of document holds: every advice document
// has its flag, every results document its chart.
constexpr KEPT_ELEMENT kind_marks[] = {
    {"link_advice_flag", {}}, {"advice", {}}, {"chart", {}}, {"menu", {}}};

// The kind of document the file's elements show: "advice", "results", or ""
// when they show neither or both.
std::string shown_kind(const char* file_name) {
  const KEPT_ELEMENT root{"body", kind_marks};
  const KEPT_TREE tree = read_kept_elements(file_name, root);
  bool advice = false, results = false;
  tree.for_each_root([&](const KEPT_NODE& body) {
    advice |= tree.child(body, "link_advice_flag") || tree.child(body, "advice");
    results |= tree.child(body, "chart") || tree.child(body, "menu");
  });
  if (advice == results) return "";
  return advice ? "advice" : "results";
}

void check_kind(const char* file_name, const std::string& kind) {
  const std::string shown = shown_kind(file_name);
  if (!shown.empty() && shown != kind)
    throw document_error(std::string(file_name) + " is an advzorv " + shown +
                         " document, not the " + kind + " document");
}

// Builds one document; the document classes take an unparsable file for an
// empty one, which has no version, and throw on a tree without their frame.
template <typename Document>
std::unique_ptr<Document> read_document(const char* file_name, const char* kind) {
  check_openable(file_name, (std::string("the ") + kind + " document").c_str());
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
  check_kind(advice_file, "advice");
  documents.results = read_document<PERF_RESULTS>(results_file, "results");
  check_kind(results_file, "results");
  return documents;
}

std::unique_ptr<LINK_DATA> read_link_file(const char* file_name) {
  check_openable(file_name, "link information");
  std::unique_ptr<LINK_DATA> link;
  try {
    link = std::make_unique<LINK_DATA>(file_name);
  } catch (const std::exception& e) {
    throw document_error(std::string(file_name) + " is not valid link information: " + e.what());
  }
  if (link->get_file_version() < 0)
    throw document_error(std::string(file_name) + " is not link information");
  return link;
}
