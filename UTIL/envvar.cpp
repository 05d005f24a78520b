#include "UTIL/envvar.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "UTIL/version.h"

namespace {

char* new_copy(const char* text, size_t length) {
  char* copy = new char[length + 1];
  memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

char* new_copy(const char* text) {
  return new_copy(text, strlen(text));
}

bool is_space(char c) {
  return isspace(static_cast<unsigned char>(c)) != 0;
}

// Skips separators and white space ahead of an entry.
const char* skip_separators(const char* p) {
  while (*p == ';' || is_space(*p))
    ++p;
  return p;
}

// The end of the entry starting at begin, with trailing white space cut.
const char* entry_end(const char* begin, const char** next) {
  const char* end = begin;
  while (*end != '\0' && *end != ';')
    ++end;
  *next = end;
  while (end > begin && is_space(end[-1]))
    --end;
  return end;
}

// A copy (delete[]) of the trimmed value if it is one entry without ";" that has
// white space inside; else null.
char* blank_separated_value(const char* raw) {
  if (strchr(raw, ';') != nullptr) return nullptr;
  const char* begin = skip_separators(raw);
  const char* ignored;
  const char* end = entry_end(begin, &ignored);
  if (std::find_if(begin, end, is_space) == end) return nullptr;
  return new_copy(begin, static_cast<size_t>(end - begin));
}

}  // namespace

char* tool_getenv(const char* name, char** used_name) {
  std::vector<std::string> candidates;
  for (const char* prefix : {isa_name_prefix(), isa_name_prefix_secondary()})
    if (prefix != nullptr) candidates.push_back(std::string(prefix) + "_" + name);
  candidates.emplace_back(name);

  for (const std::string& candidate : candidates) {
    const char* value = getenv(candidate.c_str());
    if (value == nullptr) continue;
    if (used_name != nullptr) *used_name = new_copy(candidate.c_str());
    return new_copy(value);
  }
  return nullptr;
}

void extract_paths(const char* name, std::function<void(const char*)> action) {
  char* value = tool_getenv(name, nullptr);
  if (value == nullptr) return;
  const char* next = value;
  for (const char* begin = skip_separators(next); *begin != '\0'; begin = skip_separators(next)) {
    const char* end = entry_end(begin, &next);
    const std::string entry(begin, end);
    action(entry.c_str());
  }
  delete[] value;
}

int gen_envvar_warning(const char* name, char** used_name, char** value) {
  *used_name = nullptr;
  *value = nullptr;

  char* found_name = nullptr;
  char* raw = tool_getenv(name, &found_name);
  if (raw == nullptr) return 0;
  char* candidate = blank_separated_value(raw);
  delete[] raw;

  struct stat info;
  if (candidate != nullptr && stat(candidate, &info) != 0) {
    *used_name = found_name;
    *value = candidate;
    return 1;
  }
  delete[] candidate;
  delete[] found_name;
  return 0;
}
