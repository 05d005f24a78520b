#pragma once
// Where advzorv-report's views go: standard output, or a file each, never a
// file that it reads.

#include <stdexcept>
#include <string>
#include <vector>

// A command line that can't be carried out; the message says why.
class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The text given to a view option written as a bare flag (--json): the view
// goes to standard output.
inline const std::string to_standard_output(1, '\x01');

// One view asked for on the command line.
struct VIEW_TARGET {
  std::string option;  // "--json", for messages
  std::string target;  // to_standard_output, a file name, or "" when not asked for

  bool wanted() const { return !target.empty(); }
  bool to_file() const { return wanted() && target != to_standard_output; }
};

// Throws usage_error for an output file named "-" or naming an input or
// another output (by path or as the same file), and for two views on
// standard output.
void check_targets(const std::vector<VIEW_TARGET>& views, const std::vector<std::string>& inputs);

// Writes text to standard output or replaces the view's file with it.
void emit(const VIEW_TARGET& view, const std::string& text);
