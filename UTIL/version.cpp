#include "UTIL/version.h"

#include <cstdarg>

#include "UTIL/buildid.h"
#include "UTIL/safemalloc.h"

const char* tool_name() {
  return "Advice and Performance results utility";
}
const char* isa_name_full() {
  return "ZORVEX";
}
const char* isa_name_prefix() {
  return "Zorv";
}
const char* isa_name_prefix_secondary() {
  return nullptr;
}
const char* copyright_date() {
  return "2009-2025";
}
int version_major() {
  return 25;
}
int version_minor() {
  return 11;
}
int version_patch() {
  return 0;
}
int version_has_fourth_digit() {
  return 0;
}
int version_fourth() {
  return -1;
}
const char* version_qual() {
  return ".LTS";
}
const char* version_qual_letter() {
  return "QUAL_LETTER";
}
const char* version_datecode() {
  return "25321";
}

namespace {

const char* const maker_name = "Orvane Incorporated";
const char* const os_name = "Unix";

// The four-digit format carries two marks so that a search of the binary finds it;
// it is used from the third character on.
const char marked_four_digit_format[] = "@@%d.%d.%d.%d";

// A text formatted into memory that lives for the rest of the process.
__attribute__((format(printf, 1, 2))) const char* compose(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int length = vsnprintf(nullptr, 0, format, args);
  va_end(args);

  char* text = static_cast<char*>(safemalloc(static_cast<size_t>(length) + 1));
  va_start(args, format);
  vsnprintf(text, static_cast<size_t>(length) + 1, format, args);
  va_end(args);
  return text;
}

const char* compose_version_number() {
  if (version_has_fourth_digit())
    return compose(marked_four_digit_format + 2, version_major(), version_minor(), version_patch(),
                   version_fourth());
  return compose("%d.%d.%d", version_major(), version_minor(), version_patch());
}

}  // namespace

const char* version_number() {
  static const char* const text = compose_version_number();
  return text;
}

const char* version_short() {
  static const char* const text = compose("v%s", version_number());
  return text;
}

const char* version_full() {
  static const char* const text = compose("%s%s", version_short(), version_qual());
  return text;
}

const char* isa_and_tool_name() {
  static const char* const text = compose("%s %s", isa_name_full(), tool_name());
  return text;
}

const char* isa_tool_and_version_short() {
  static const char* const text =
      compose("%s %s %s %s", isa_name_full(), tool_name(), os_name, version_short());
  return text;
}

const char* isa_tool_and_version_full() {
  static const char* const text =
      compose("%s %s %s %s", isa_name_full(), tool_name(), os_name, version_full());
  return text;
}

const char* os_and_version_short() {
  static const char* const text = compose("%s %s", os_name, version_short());
  return text;
}

const char* os_and_version_full() {
  static const char* const text = compose("%s %s", os_name, version_full());
  return text;
}

const char* copyright_full() {
  static const char* const text = compose("Copyright (c) %s %s", copyright_date(), maker_name);
  return text;
}

void print_tool_and_version(FILE* stream) {
  fprintf(stream, "%-*.*s%s\n", 40, 40, isa_and_tool_name(), version_full());
}

void print_banner(FILE* stream) {
  print_tool_and_version(stream);
  fprintf(stream, "%s\n", copyright_full());
}

void print_toolversion(FILE* stream) {
  print_tool_and_version(stream);
  buildid(stream, "Build Number ");
}

void buildid(FILE* stream, const char* label) {
  write_buildid(stream, label, build_date(), build_time(), build_branch());
}
