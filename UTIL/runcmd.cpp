#include "UTIL/runcmd.h"

#include <sys/stat.h>
#include <sys/times.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "UTIL/filename.h"
#include "UTIL/safemalloc.h"

namespace {

// A line of this many counted characters or more goes through a command file.
constexpr int line_limit = 1023;
constexpr int max_dash_prefix = 5;
constexpr size_t cmd_file_arg_size = 4096;
constexpr size_t dump_piece = 128;

bool command_files_disabled = false;
int dump_files = 0;
int dump_args = 0;
char* search_path = nullptr;
// The copy set_execution_path_to_search_path made; freed when it makes the next.
char* owned_search_path = nullptr;
int echo = 0;

// The escaped body of the argument being quoted; kept and enlarged across calls.
char* work_buffer = nullptr;
size_t work_size = 0;

void reserve_work(size_t size) {
  if (size <= work_size) return;
  work_buffer = static_cast<char*>(saferealloc(work_buffer, size));
  work_size = size;
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool needs_quotes(const char* body) {
  const size_t length = strlen(body);
  if (strpbrk(body, " -~+[]{};&|:=/") != nullptr) return true;
  if (length > 0 && body[length - 1] == '\\') return true;
  if (body[0] == '.') return true;
  // Begins with a digit and has a non-digit further on.
  return is_digit(body[0]) && strspn(body, "0123456789") < length;
}

// Escapes each double quote and backslash of body into the work buffer; gives
// whether anything was escaped.
bool escape_into_work(const char* body) {
  reserve_work(2 * strlen(body) + 1);
  char* out = work_buffer;
  for (const char* p = body; *p; ++p) {
    if (*p == '"' || *p == '\\') *out++ = '\\';
    *out++ = *p;
  }
  *out = '\0';
  return out - work_buffer != static_cast<ptrdiff_t>(strlen(body));
}

char* concat(const char* prefix, size_t prefix_length, const char* quote, const char* body) {
  const size_t size = prefix_length + 2 * strlen(quote) + strlen(body) + 1;
  char* text = static_cast<char*>(safemalloc(size));
  snprintf(text, size, "%.*s%s%s%s", static_cast<int>(prefix_length), prefix, quote, body, quote);
  return text;
}

// Frees a list made by new_list and filled up to its null, with its strings.
void free_list(char** list) {
  for (char** entry = list; *entry != nullptr; ++entry)
    free(*entry);
  free(list);
}

char** new_list(int count) {
  return static_cast<char**>(safecalloc(static_cast<size_t>(count) + 1, sizeof(char*)));
}

// The program to start: the one in the search path if it is an executable file
// there, else the command as given, for execvp to look up.
char* resolve_command(const char* command) {
  if (search_path == nullptr) return safestrdup(command);
  const size_t size = strlen(search_path) + strlen(command) + 2;
  char* candidate = static_cast<char*>(safemalloc(size));
  snprintf(candidate, size, "%s/%s", search_path, command);
  struct stat st;
  if (stat(candidate, &st) == 0) {
    if (S_ISREG(st.st_mode) && (st.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0) return candidate;
    if (echo > 0) printf("-- Cannot execute '%s'\n", candidate);
  }
  free(candidate);
  return safestrdup(command);
}

// The vector for execvp: program, copies of the arguments, and a null.
char** build_argv(char* program, char** args, int count) {
  char** argv = new_list(count + 1);
  argv[0] = program;
  for (int i = 0; i < count; ++i)
    argv[i + 1] = safestrdup(args[i]);
  return argv;
}

void show_argv(char** argv, int count) {
  char** quoted = new_list(count);
  quote_arguments(count, argv, quoted, true);
  for (int i = 0; i < count; ++i)
    printf("%s ", quoted[i]);
  printf("\n");
  free_list(quoted);
}

long clock_rate() {
  static long rate = 0;
  if (rate == 0) {
    rate = sysconf(_SC_CLK_TCK);
    if (rate <= 0) perror("sysconf error");
  }
  return rate;
}

void measure(clock_t start_clock, const tms& start, timing_info* times) {
  tms end;
  const clock_t end_clock = ::times(&end);
  if (end_clock == static_cast<clock_t>(-1)) {
    perror("timing error");
    return;
  }
  const long rate = clock_rate();
  if (rate <= 0) return;
  const double hz = static_cast<double>(rate);
  times->real_time = static_cast<double>(end_clock - start_clock) / hz;
  times->user_time = static_cast<double>(end.tms_cutime - start.tms_cutime) / hz;
  times->system_time = static_cast<double>(end.tms_cstime - start.tms_cstime) / hz;
}

void report_wait_error() {
  switch (errno) {
    case EINTR:
      fputs("ERROR: wait() interrupted by a signal\n", stderr);
      break;
    case EINVAL:
      fputs("ERROR: wait() options not valid\n", stderr);
      break;
    case ECHILD:
      fputs("ERROR: Child process is missing!\n", stderr);
      break;
    default:
      fputs("ERROR: Unknown wait() error\n", stderr);
  }
}

// Dies of the signal that killed the child, so that the caller sees the same end.
void follow_signal(int sig) {
  signal(sig, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, sig);
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
  raise(sig);
}

// Runs command with count arguments as a child and waits for it; times are set.
int invoke(const char* command, char** args, int count, timing_info* times, bool report) {
  char** argv = build_argv(resolve_command(command), args, count);
  if (dump_args) show_argv(argv, count + 1);
  fflush(stdout);
  fflush(stderr);

  int result = 0;
  *times = timing_info{};
  if (echo < 2) {
    tms start;
    const clock_t start_clock = ::times(&start);
    if (fork() == 0) {
      execvp(argv[0], argv);
      if (report) fprintf(stderr, "exec() error spawning %s: %s\n", argv[0], strerror(errno));
      _exit(1);
    }
    int status = 0;
    if (wait(&status) == -1) {
      if (report) report_wait_error();
      result = -1;
    } else {
      measure(start_clock, start, times);
      if (WIFEXITED(status)) {
        result = WEXITSTATUS(status);
        if (result != 0 && report) printf("\n>> Compilation failure\n");
      } else {
        if (report)
          fprintf(stderr,
                  WIFSIGNALED(status) ? "abnormal termination of %s\n" : "error executing %s\n",
                  argv[0]);
        if (!WIFSIGNALED(status)) exit(1);
        follow_signal(WTERMSIG(status));
        result = -1;
      }
    }
  }
  free_list(argv);
  return result;
}

void print_rule(char left, int dashes, char right) {
  if (left) putchar(left);
  for (int i = 0; i < dashes; ++i)
    putchar('-');
  if (right) putchar(right);
  putchar('\n');
}

// Shows the command file on stdout, framed.
void show_command_file(const char* command, const char* file_name) {
  FILE* file = fopen(file_name, "r");
  if (file == nullptr) {
    fprintf(stderr, "**DANGER: Cannot open command file %s! %s\n", file_name, strerror(errno));
    return;
  }
  putchar('\n');
  print_rule('/', 77, '\\');
  const size_t size = strlen(command) + strlen(file_name) + sizeof " COMMAND FILE :";
  char* title = static_cast<char*>(safemalloc(size));
  snprintf(title, size, "%s COMMAND FILE %s:", command, file_name);
  printf("| %-75s |\n", title);
  free(title);
  print_rule('\\', 77, '/');
  char piece[dump_piece];
  for (size_t got; (got = fread(piece, 1, sizeof piece, file)) > 0;)
    fwrite(piece, 1, got, stdout);
  fclose(file);
  print_rule('\0', 79, '\0');
  putchar('\n');
}

// Writes one quoted argument per line; false on a write error.
bool write_command_file(FILE* file, char** quoted, int count) {
  bool ok = true;
  for (int i = 0; ok && i < count; ++i)
    ok = fprintf(file, "%s\n", quoted[i]) >= 0;
  return fclose(file) == 0 && ok;
}

// Runs command with its arguments in a temporary command file named behind
// cmd_file_option.
int run_through_command_file(const char* command, char** args, int count,
                             const char* cmd_file_option, bool report, timing_info* times) {
  char** quoted = new_list(count);
  quote_arguments(count, args, quoted, true);
  char option_and_file[cmd_file_arg_size];
  char* name = fn_tmpnam(nullptr, nullptr, nullptr);
  const int length =
      snprintf(option_and_file, sizeof option_and_file, "%s%s", cmd_file_option, name);
  // A name cut short by the buffer would be another file: such a one isn't made.
  const bool fits = static_cast<size_t>(length) < sizeof option_and_file;
  const char* file_name = fits ? option_and_file + strlen(cmd_file_option) : name;
  FILE* file = fits ? fopen(file_name, "w") : nullptr;
  if (!fits) errno = ENAMETOOLONG;

  int result = -1;
  if (file == nullptr) {
    if (report)
      fprintf(stderr, "Cannot open temporary command file '%s': %s\n", file_name, strerror(errno));
  } else if (!write_command_file(file, quoted, count)) {
    if (report)
      fprintf(stderr, "Cannot write to temporary command file '%s': %s\n", file_name,
              strerror(errno));
    fn_delete(file_name);
  } else {
    if (dump_files) show_command_file(command, file_name);
    char* arg = option_and_file;
    result = invoke(command, &arg, 1, times, report);
    if (echo == 0) {
      fn_delete(file_name);
    } else {
      const char* quote = strpbrk(file_name, " -~") ? "\"" : "";
      printf("%s %s%s%s\n", "rm", quote, file_name, quote);
      if (echo < 2) fn_delete(file_name);
    }
  }
  free(name);
  free_list(quoted);
  return result;
}

}  // namespace

int quote_arguments(int count, char** args, char** out, bool quote) {
  long length = 0;
  bool noted = false;
  for (int i = 0; i < count; ++i) {
    const char* arg = args[i];
    size_t dashes = 0;
    while (dashes < max_dash_prefix && arg[dashes] == '-')
      ++dashes;
    const char* body = arg + dashes;
    bool quoted = false;
    bool escaped = false;
    if (quote) {
      quoted = needs_quotes(body);
      escaped = escape_into_work(body);
      body = work_buffer;
      noted = noted || quoted || escaped;
    }
    if (out) out[i] = concat(arg, dashes, quoted ? "\"" : "", body);
    length += static_cast<long>(strlen(body)) + 1;
  }
  return length >= line_limit || noted;
}

int run_command(const char* command, char** args, int count, const char* cmd_file_option,
                int echo_level, bool report, timing_info* times) {
  echo = echo_level;
  const bool too_long = quote_arguments(count, args, nullptr, false);
  timing_info taken;
  int result;
  if (!command_files_disabled && cmd_file_option && *cmd_file_option && too_long) {
    result = run_through_command_file(command, args, count, cmd_file_option, report, &taken);
  } else {
    char** plain = new_list(count);
    quote_arguments(count, args, plain, false);
    result = invoke(command, plain, count, &taken, report);
    free_list(plain);
  }
  if (times) {
    times->real_time += taken.real_time;
    times->user_time += taken.user_time;
    times->system_time += taken.system_time;
  }
  return result;
}

void disable_command_files() {
  command_files_disabled = true;
}

void enable_command_files() {
  command_files_disabled = false;
}

void dump_command_files(int on) {
  dump_files = on;
}

void dump_command_args(int on) {
  dump_args = on;
}

char* run_search_path() {
  return search_path;
}

void add_run_search_path(char* path) {
  search_path = path;
}

void set_execution_path_to_search_path(char* program) {
  if (strpbrk(program, "/\\") == nullptr) return;
  char* dir;
  fn_split(program, &dir, nullptr, nullptr);
  char* path = safestrdup(dir);
  // Trailing separators go, but a root such as "/" or "c:/" stays whole.
  for (size_t length = strlen(path);
       length > 1 && (path[length - 1] == '/' || path[length - 1] == '\\') &&
       path[length - 2] != ':';
       --length)
    path[length - 1] = '\0';
  free(owned_search_path);
  search_path = owned_search_path = path;
}

argv_list::argv_list(const char* command, const char* cmd_file_option, int echo_level)
    : command(command ? command : ""),
      cmd_file_option(cmd_file_option ? cmd_file_option : ""),
      echo_level(echo_level) {}

void argv_list::addf(const char* format, ...) {
  size_t size = strlen(format) + 1;
  char* text = static_cast<char*>(safemalloc(size));
  va_list ap;
  va_start(ap, format);
  const int needed = vsnprintf(text, size, format, ap);
  va_end(ap);
  if (needed >= 0 && static_cast<size_t>(needed) >= size) {
    size = static_cast<size_t>(needed) + 1;
    text = static_cast<char*>(saferealloc(text, size));
    va_start(ap, format);
    vsnprintf(text, size, format, ap);
    va_end(ap);
  }
  args.emplace_back(needed >= 0 ? text : "");
  free(text);
}

int argv_list::del() {
  if (args.empty()) return 0;
  args.pop_back();
  return 1;
}

int argv_list::del(int index) {
  if (index < 0 || static_cast<size_t>(index) >= args.size()) return 0;
  args.erase(args.begin() + index);
  return 1;
}

int argv_list::execute(bool report, timing_info* times) {
  const int count = static_cast<int>(args.size());
  char** plain = new_list(count);
  for (int i = 0; i < count; ++i)
    plain[i] = safestrdup(args[static_cast<size_t>(i)].c_str());
  const int result = run_command(command.c_str(), plain, count,
                                 cmd_file_option.empty() ? nullptr : cmd_file_option.c_str(),
                                 echo_level, report, times);
  free_list(plain);
  return result;
}

void argv_list::dump(const char* format, ...) const {
  va_list ap;
  va_start(ap, format);
  vprintf(format, ap);
  va_end(ap);
  printf(": %s ", command.c_str());
  for (const std::string& arg : args)
    printf("%s ", arg.c_str());
  printf("\n");
}
