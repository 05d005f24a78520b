#include "UTIL/fatal_error.h"
#include "UTIL/safemalloc.h"
#include "UTIL/strcase.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <functional>
#include <string>

namespace {

// The largest pointer value the handlers take for a small integer.
const char* const not_a_text = reinterpret_cast<const char*>(100000);

void report_callback(int sig) {
  fprintf(stderr, "callback %d\n", sig);
}

// A second fatal signal during the report: the callback raises another, which
// runs no callback.
void reenter_once(int) {
  install_common_handlers(SIG_DFL, nullptr);
  common_signal_handler(SIGFPE, "again", nullptr);
}

// Installs the callback, then reports sig, as a tool's handler would.
template <typename... Args>
[[noreturn]] void handle(signal_callback_fn callback, int sig, const char* name, const char* fmt,
                         Args... args) {
  install_common_handlers(SIG_DFL, callback);
  common_signal_handler(sig, name, fmt, args...);
}

TEST(FatalErrorDeathTest, EachSignalIsReportedOnceAndEndsWithStatusTwo) {
  const std::string support =
      "This is caused by a defect in the Orvane Advice and Performance results utility.\n"
      "Orvane Customer Support may be able to suggest a workaround to avoid this.\n\n"
      "Upgrading to the newest version of the compiler may fix this problem.\n\n"
      "Contact Orvane on the Forumline support forums at https://forumline.orvane.example/support"
      "\n\nWe need to see this ENTIRE error message and a complete, reproducible\n"
      "test case including ALL of the command-line options.\n\n";
  const std::string fpe = "\nINTERNAL ERROR: unknown received a floating point exception\n\n";
  const std::pair<std::function<void()>, testing::Matcher<const std::string&>> cases[] = {
      // exit signals print one line and run no callback
      {[] { handle(report_callback, SIGINT, "tool", nullptr); }, "[tool forced exit]\n"},
      {[] { handle(report_callback, SIGTERM, not_a_text, nullptr); },
       "[unknown received a terminate signal]\n"},
      {[] {  // through the installed handler
         install_common_handlers(
             [](int sig) { handle(report_callback, sig, "tool", "at step %d", 42); }, nullptr);
         raise(SIGSEGV);
       },
       "\nINTERNAL ERROR: tool experienced a segmentation fault\n" + std::string(18, ' ') +
           "at step 42\n\n" + support + "callback 11\n"},
      // a null or empty format prints no text line
      {[] { handle(nullptr, SIGFPE, not_a_text, nullptr); }, fpe + support},
      {[] { handle(nullptr, SIGFPE, not_a_text, ""); }, fpe + support},
      // later signals keep the first reason
      {[] { handle(reenter_once, SIGABRT, "tool", nullptr); },
       testing::ContainsRegex("INTERNAL ERROR: again had an internal inconsistency and aborted\n")},
  };
  for (const auto& [run, stderr_text] : cases)
    EXPECT_EXIT(run(), testing::ExitedWithCode(2), stderr_text);
}

TEST(FatalError, TheSupportTextAsksForWhatTheToolReads) {
  const std::string pp = "Include the .pp file created by option --preproc_with_comment\n\n";
  for (auto [name, closing] : {std::pair{"ZORVEX C/C++ Parser", pp}, {"C/C++ Codegen", pp},
                               {"Linker", "Include all of the object files"}, {"Linker 2", "\n"}})
    EXPECT_EQ(std::string(support_closing(name)).substr(0, closing.size()), closing) << name;
}

TEST(FatalError, SigstrnappendAppendsWhatFits) {
  char buf[12] = "ab\0zzzzzzzz";  // what stands behind the text's end is no part of it
  sigstrnappend(buf, sizeof buf, "%d-%s", 12, "cd");
  sigstrnappend(buf, sizeof buf, "%s", "efghijk");
  EXPECT_STREQ(buf, "ab12-cdefgh");
  char full[4] = {'a', 'b', 'c', 'd'};  // a full buffer gets only its final zero
  sigstrnappend(full, sizeof full, "%s", "more");
  EXPECT_EQ(std::string(full, sizeof full), std::string("abc\0", 4));
  char large[5000] = "";  // the formatted text is cut at 2047 characters
  sigstrnappend(large, sizeof large, "%s", std::string(3000, 'y').c_str());
  // An invalid buffer is neither touched nor formatted for, so an invalid
  // format appends the text before it again.
  sigstrnappend(const_cast<char*>(not_a_text), 10, "%s", "lost");
  sigstrnappend(large, sizeof large, not_a_text);
  EXPECT_EQ(std::string(large), std::string(2 * 2047, 'y'));
}

TEST(StrCase, ComparisonsGiveTheFoldedDifferenceAndSearchesTheOffset) {
  EXPECT_EQ(strcaseicmp("abc", "AB"), 'c');  // a shorter text's end counts as 0
  EXPECT_EQ(strcaseincmp("abX", "ABy", 3), 'x' - 'y');
  EXPECT_TRUE(strcaseicmp("Abc", "aBC") == 0 && strcaseincmp("abX", "ABy", 2) == 0 &&
              strcaseincmp("Abc", "aBC", 9) == 0 && strcaseincmp("b", "A", 1) == 1);
  const char* text = "one Two two";
  EXPECT_TRUE(strcaseistr(text, "tWO") == text + 4 && strcaseistr(text, "") == text &&
              strcaseistr(text, "three") == nullptr);
}

TEST(SafeMallocDeathTest, ExhaustionEndsTheProcess) {
  const size_t impossible = SIZE_MAX - 16;
  const char* message = "ERROR: out of memory\n$";  // a sanitizer's allocator may warn first
  EXPECT_EXIT(safemalloc(impossible), testing::ExitedWithCode(1), message);
  EXPECT_EXIT(saferealloc(nullptr, impossible), testing::ExitedWithCode(1), message);
  EXPECT_EXIT(safecalloc(impossible, 2), testing::ExitedWithCode(1), message);
}

}  // namespace
