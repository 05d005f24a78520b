#include "programs/series/build_step.h"

#include <cctype>
#include <cerrno>
#include <deque>
#include <fstream>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace {

// The text that stands for "{name}", or null for a name that isn't one.
const std::string* placeholder(const STEP_SETTING& step, const std::string& name) {
  if (name == "value") return &step.value;
  if (name == "option") return &step.option;
  if (name == "setting") return &step.setting;
  return nullptr;
}

std::string substituted(const std::string& word, const STEP_SETTING& step) {
  std::string out;
  std::string::size_type pos = 0;
  while (pos < word.size()) {
    const auto open = word.find('{', pos);
    const auto close = open == std::string::npos ? open : word.find('}', open);
    if (close == std::string::npos) break;
    const std::string* text = placeholder(step, word.substr(open + 1, close - open - 1));
    out.append(word, pos, open - pos);
    if (text) {
      out += *text;
      pos = close + 1;
    } else {
      out += '{';
      pos = open + 1;
    }
  }
  out.append(word, pos);
  return out;
}

bool plain_file_char(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_' ||
         c == '=';
}

void write_all(int fd, const std::string& text) {
  for (std::string::size_type done = 0; done < text.size();) {
    const ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) throw std::system_error(errno, std::generic_category(), "writing a build log");
    done += static_cast<std::string::size_type>(n);
  }
}

}  // namespace

std::vector<std::string> substituted_command(const std::vector<std::string>& command,
                                             const STEP_SETTING& step) {
  std::vector<std::string> words;
  for (const std::string& word : command)
    words.push_back(substituted(word, step));
  return words;
}

std::string build_log_path(const std::string& log_dir, const STEP_SETTING& step) {
  std::string name = step.setting;
  while (!name.empty() && name.front() == '-')
    name.erase(0, 1);
  for (char& c : name)
    if (!plain_file_char(c)) c = '_';
  return log_dir + "/" + name + ".log";
}

CHILD_END run_build(const std::vector<std::string>& command, const STEP_SETTING& step,
                    const std::string& log_path, const std::function<void()>& tick) {
  const int log = open(log_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (log < 0) throw std::system_error(errno, std::generic_category(), log_path);
  CHILD_RUN run{substituted_command(command, step),
                {"ADVZORV_VALUE=" + step.value, "ADVZORV_OPTION=" + step.option,
                 "ADVZORV_SETTING=" + step.setting},
                log,
                true};
  try {
    std::string line = "+";
    for (const std::string& word : run.argv)
      line += " " + word;
    write_all(log, line + "\n");
    const CHILD_END end = run_child(run, tick);
    close(log);
    return end;
  } catch (...) {
    close(log);
    throw;
  }
}

std::string log_tail(const std::string& log_path, unsigned count) {
  std::ifstream in(log_path);
  std::deque<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
    if (lines.size() > count) lines.pop_front();
  }
  std::string tail;
  for (const std::string& line : lines)
    tail += line + "\n";
  return tail;
}
