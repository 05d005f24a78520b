#pragma once
// Carried for the toolchain's other tools; no step of an advzorv run calls it.
// Running another tool of the toolchain as a child process: the arguments are
// collected in an argv_list, quoted, and handed over on the command line or,
// when the line would be too long, through a temporary command file.
#include <string>
#include <vector>

// Times in seconds; run_command adds to them.
struct timing_info {
  double real_time = 0;
  double user_time = 0;
  double system_time = 0;
};

// One command to run: the program and its arguments (without the program's name).
class argv_list {
 public:
  std::string command;
  std::vector<std::string> args;
  // The option with which the tool takes a command file (such as "-@"); empty
  // if it takes none.
  std::string cmd_file_option;
  // 0 runs quietly; 1 and above also tell what is done; 2 and above run nothing.
  int echo_level;

  // A null cmd_file_option counts as empty.
  argv_list(const char* command, const char* cmd_file_option, int echo_level);

  void add(const char* arg) { args.emplace_back(arg); }
  void add(const std::string& arg) { args.push_back(arg); }
  // Appends one argument made by printf-style formatting.
  void addf(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Removes the last argument; 1, or 0 if there is none.
  int del();
  // Removes the argument at index; 1, or 0 if index is out of range.
  int del(int index);
  // The text of the argument at index, which must be valid.
  const char* getarg(int index) const { return args.at(static_cast<size_t>(index)).c_str(); }
  // Runs the command through run_command and gives its result.
  int execute(bool report, timing_info* times);
  // Writes the formatted text, ": <command> ", each argument and a blank, and a
  // new line to stdout.
  void dump(const char* format, ...) const __attribute__((format(printf, 2, 3)));
};

// Runs command with count arguments and waits for it. Gives the child's exit
// status, 0 without running at echo_level 2 and above, -1 if the command file
// can't be written or wait fails. A child killed by a signal kills this process
// with the same signal. times, if not null, is added to.
int run_command(const char* command, char** args, int count, const char* cmd_file_option,
                int echo_level, bool report, timing_info* times);

// Adds up the length of the arguments as they would stand on a command line, dashes
// and quotes aside, and, if out is not null, stores a new (free) string per argument
// there. With quote, bodies that need it are escaped and put in double quotes, dashes
// kept outside. 1 if the line reaches the limit or an argument was quoted or escaped
// (which makes the quotes' length immaterial), else 0.
int quote_arguments(int count, char** args, char** out, bool quote);

// Process-wide settings of run_command.
void disable_command_files();
void enable_command_files();
void dump_command_files(int on);
void dump_command_args(int on);
// The directory in which commands are looked for first, or null.
char* run_search_path();
// Replaces the search path with path, which is borrowed.
void add_run_search_path(char* path);
// Makes the directory of program the search path if program names one.
void set_execution_path_to_search_path(char* program);
