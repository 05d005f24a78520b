#pragma once
// The two documents as one JSON object, for CI jobs and scripts. Its keys are
// an interface, described by doc/report_documents.schema.json.

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>

class ADVICE;
class PERF_RESULTS;

// Current settings, every advice entry, the chart with its bars in document
// order, the best key and both documents' time stamps.
nlohmann::json documents_json(const ADVICE& advice, const PERF_RESULTS& results);

// Writes value indented by two spaces, with a final newline.
void write_json(std::ostream& out, const nlohmann::json& value);
// Replaces the file at path with that text; failures throw xml_parser_error
// naming path.
void write_json_file(const std::string& path, const nlohmann::json& value);
