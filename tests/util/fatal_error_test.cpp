#include "UTIL/fatal_error.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <regex>
#include <string>

#include "capture.h"

namespace {

// The largest pointer value the handlers take for a small integer.
const char* const not_a_text = reinterpret_cast<const char*>(100000);

std::string support_message() {
  return capture_output(stderr, print_support_message);
}

TEST(SupportMessage, NamesTheToolAndEndsWithOneLineEnd) {
  EXPECT_TRUE(std::regex_match(
      support_message(),
      std::regex("This is caused by a defect in the Orvane Advice and Performance "
                 "results utility\\.\n"
                 "Orvane Customer Support may be able to suggest a workaround to avoid "
                 "this\\.\n\n"
                 "Upgrading to the newest version of the compiler may fix this problem\\.\n\n"
                 "Contact Orvane on the Forumline support forums at https://[^ \n]+\n\n"
                 "We need to see this ENTIRE error message and a complete, reproducible\n"
                 "test case including ALL of the command-line options\\.\n\n")))
      << support_message();
}

void report_callback(int sig) {
  fprintf(stderr, "callback %d\n", sig);
}
std::string callback_line(int sig) {
  return "callback " + std::to_string(sig) + "\n";
}

// A tool's own handler: reports in its name.
void tool_handler(int sig) {
  common_signal_handler(sig, "tool", "while %s", "testing");
}

TEST(InstallCommonHandlers, InstallsTheToolsHandler) {
  struct sigaction saved, now;
  sigaction(SIGSEGV, nullptr, &saved);
  install_common_handlers(tool_handler, nullptr);
  sigaction(SIGSEGV, nullptr, &now);
  EXPECT_EQ(now.sa_handler, tool_handler);
  sigaction(SIGSEGV, &saved, nullptr);
}

// Installs the callback, then reports sig, as a tool's handler would.
template <typename... Args>
[[noreturn]] void handle(signal_callback_fn callback, int sig, const char* name, const char* fmt,
                         Args... args) {
  install_common_handlers(SIG_DFL, callback);
  common_signal_handler(sig, name, fmt, args...);
}

void expect_report(const std::function<void()>& run, const std::string& stderr_text) {
  EXPECT_EXIT(run(), testing::ExitedWithCode(2), testing::Eq(stderr_text));
}

TEST(CommonSignalHandlerDeathTest, ExitSignalsPrintOneLineWithoutCallback) {
  expect_report([] { handle(report_callback, SIGINT, "tool", nullptr); }, "[tool forced exit]\n");
  expect_report([] { handle(report_callback, SIGHUP, "tool", "%d", 1); }, "[tool forced exit]\n");
  expect_report([] { handle(report_callback, SIGTERM, not_a_text, nullptr); },
                "[unknown received a terminate signal]\n");
}

TEST(CommonSignalHandlerDeathTest, FatalSignalReport) {
  const std::string blanks(18, ' ');
  expect_report([] { handle(report_callback, SIGSEGV, "tool", "at step %d", 42); },
                "\nINTERNAL ERROR: tool experienced a segmentation fault\n" + blanks +
                    "at step 42\n\n" + support_message() + callback_line(SIGSEGV));
  // A null or empty format prints no text line.
  const std::string plain =
      "\nINTERNAL ERROR: unknown received a floating point exception\n\n" + support_message();
  expect_report([] { handle(nullptr, SIGFPE, not_a_text, nullptr); }, plain);
  static const char* const empty = "";
  expect_report([] { handle(nullptr, SIGFPE, not_a_text, empty); }, plain);
  // The formatted text is cut at 2047 characters.
  static const std::string huge(3000, 'x');
  EXPECT_EXIT(handle(nullptr, SIGILL, "tool", "%s", huge.c_str()), testing::ExitedWithCode(2),
              testing::ContainsRegex("\n" + blanks + std::string(2047, 'x') + "\n\n"));
  // An installed handler reports a raised signal.
  expect_report(
      [] {
        install_common_handlers(tool_handler, report_callback);
        raise(SIGBUS);
      },
      "\nINTERNAL ERROR: tool experienced a bus alignment fault\n" + blanks + "while testing\n\n" +
          support_message() + callback_line(SIGBUS));
}

// A second fatal signal during the report: the callback raises another.
void reenter_once(int) {
  static bool reentered = false;
  if (!reentered) {
    reentered = true;
    common_signal_handler(SIGFPE, "again", nullptr);
  }
}

TEST(CommonSignalHandlerDeathTest, LaterSignalsKeepTheFirstReason) {
  EXPECT_EXIT(handle(reenter_once, SIGABRT, "tool", nullptr), testing::ExitedWithCode(2),
              testing::ContainsRegex("INTERNAL ERROR: again had an internal inconsistency "
                                     "and aborted\n"));
}

TEST(Sigstrnappend, AppendsWhatFits) {
  char buf[12] = "ab";
  sigstrnappend(buf, sizeof buf, "%d-%s", 12, "cd");
  EXPECT_STREQ(buf, "ab12-cd");
  sigstrnappend(buf, sizeof buf, "%s", "efghijk");
  EXPECT_STREQ(buf, "ab12-cdefgh");

  // A full buffer gets only its final zero.
  char full[4] = {'a', 'b', 'c', 'd'};
  sigstrnappend(full, sizeof full, "%s", "more");
  EXPECT_EQ(std::string(full, sizeof full), std::string("abc\0", 4));

  // The formatted text is cut at 2047 characters.
  char large[4000] = "";
  sigstrnappend(large, sizeof large, "%s", std::string(3000, 'y').c_str());
  EXPECT_EQ(strlen(large), 2047u);
}

TEST(Sigstrnappend, InvalidPointers) {
  char buf[16] = "";
  sigstrnappend(buf, sizeof buf, "%s", "kept");
  // An invalid buffer is neither touched nor formatted for ...
  sigstrnappend(const_cast<char*>(not_a_text), 10, "%s", "lost");
  // ... so an invalid format appends "kept" again.
  sigstrnappend(buf, sizeof buf, not_a_text);
  EXPECT_STREQ(buf, "keptkept");
}

}  // namespace
