#include "UTIL/buildid.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "UTIL/strcase.h"

namespace {

// Stamps of this file's compilation; a new build brings new values.
const char stored_build_date[] = __DATE__;
const char stored_build_time[] = __TIME__;

// Fixed words of the build environment that the line encodes.
const char build_system_word[] = "OBS";  // Orvane Build System
const char build_host_system[] = "Linux";
const char build_host_version[] = "6.1";
const char stored_branch_name[] = "Main";
const int branch_steps = 4;

struct BranchPrefix {
  const char* prefix;
  const char* code;
};

// Known branch-name prefixes, tried in this order (longer spellings first).
constexpr BranchPrefix branch_prefixes[] = {
    {"main", "MN"}, {"release", "RL"}, {"rel", "RE"},    {"develop", "DV"},
    {"dev", "DE"},  {"feature", "FT"}, {"hotfix", "HF"}, {"orvane", "OR"},
};

int upper(char c) {
  return toupper(static_cast<unsigned char>(c));
}

// Digits to Q..Z, A..J to 0..9, K..Z to A..P, anything else to '%'.
char build_char(char c) {
  const int u = upper(c);
  if (u >= '0' && u <= '9') return static_cast<char>('Q' + (u - '0'));
  if (u >= 'A' && u <= 'J') return static_cast<char>('0' + (u - 'A'));
  if (u >= 'K' && u <= 'Z') return static_cast<char>('A' + (u - 'K'));
  return '%';
}

// '.' to A, '-' to B, digits to Q..Z, anything else to C.
char host_char(char c) {
  if (c == '.') return 'A';
  if (c == '-') return 'B';
  if (c >= '0' && c <= '9') return static_cast<char>('Q' + (c - '0'));
  return 'C';
}

void write_mapped(FILE* stream, const char* word, char (*map)(char)) {
  fputc('-', stream);
  for (const char* p = word; *p != '\0'; ++p)
    fputc(map(*p), stream);
}

void write_branch_code(FILE* stream, const char* name) {
  fputc('-', stream);
  for (int step = 0; step < branch_steps && *name != '\0'; ++step) {
    const BranchPrefix* match = nullptr;
    for (const BranchPrefix& known : branch_prefixes)
      if (strcaseincmp(name, known.prefix, strlen(known.prefix)) == 0) {
        match = &known;
        break;
      }
    if (match != nullptr) {
      fputs(match->code, stream);
      name += strlen(match->prefix);
      continue;
    }
    const int c = upper(*name++);
    if (c == 'Z' || c == '9') {
      fputc('Z', stream);
      fputc(c, stream);
    } else if (c == '-' || c == '.' || c == '_') {
      fputc(c, stream);
    } else {
      fputc(build_char(static_cast<char>(c)), stream);
    }
  }
}

// The day of the month of a "Mmm dd yyyy" stamp.
int day_of(const char* date) {
  return strlen(date) > 4 ? atoi(date + 4) : 0;
}

char day_char(int day) {
  return static_cast<char>(day < 10 ? '0' + day : 'A' + (day - 10));
}

char hour_char(int hour) {
  return static_cast<char>('A' + hour % 24);
}

}  // namespace

const char* build_date() {
  return stored_build_date;
}
const char* build_time() {
  return stored_build_time;
}
const char* build_branch() {
  return stored_branch_name;
}

void write_buildid(FILE* stream, const char* label, const char* date, const char* time,
                   const char* branch) {
  if (stream == nullptr) stream = stdout;
  if (label != nullptr) fputs(label, stream);
  fputs("1ZL", stream);
  fputc(day_char(day_of(date)), stream);
  fputc(hour_char(atoi(time)), stream);
  write_mapped(stream, build_system_word, build_char);
  write_mapped(stream, build_host_system, host_char);
  write_mapped(stream, build_host_version, host_char);
  write_branch_code(stream, branch);
  fputc('\n', stream);
}
