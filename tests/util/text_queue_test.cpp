#include "UTIL/text_queue.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "capture.h"

namespace {

using entries = std::vector<std::pair<const char*, std::string>>;  // key and text

std::string listing(int width, sort_method sort, const entries& queued, int columnation = 1) {
  init_queue("T", width, sort);
  for (const auto& [key, text] : queued)
    queueup(key, text.c_str(), 0);
  return capture_output(stdout, [&] { EXPECT_EQ(print_queue(columnation, sort_by_key, 0), 1); });
}

TEST(TextQueue, SortOrdersAndColumns) {
  // By key, leading dashes skipped; equal keys keep their order; method 0 sorts by key too.
  // Texts begin in upper case, keys are cut to the width; a new queue drops the unprinted.
  init_queue("X", 3, sort_by_key), queueup("-z", "z", 0);
  for (sort_method method : {sort_by_key, static_cast<sort_method>(0)})
    EXPECT_EQ(listing(3, method, {{"--bx", "b"}, {"-c", "c"}, {"-a", "a"}, {"--a", "a"}}),
              "T\n  -a  A\n  --a A\n  --b B\n  -c  C\n");
  // One entry falls back to one column; width 0 takes the longest key yet, "--bx".
  EXPECT_EQ(listing(0, sort_as_added, {{"-a", "a"}}, 2), "T\n  -a   A\n");
  EXPECT_EQ(print_queue(1, sort_by_key, 0), 0);  // printing emptied the queue
  // By priority, the highest first, and equal ones by key.
  init_queue("P", 2, sort_by_priority);
  queueup("-b", "b", 1), queueup("-c", "c", 2), queueup("-a", "a", 1);
  EXPECT_EQ(capture_output(stdout, [] { print_queue(1, sort_by_key, 0); }),
            "P\n  -c C\n  -a A\n  -b B\n");

  // Entries fit while text + width + 2 <= 37 and fill rows, left column first,
  // in the order added; the wide one follows on a line of its own. The sign of the
  // width is ignored.
  const std::string fits = "t" + std::string(30, 'o'), wide = "w" + std::string(31, 'i');
  EXPECT_EQ(
      listing(-4, sort_as_added,
              {{"-b", "one"}, {"-w", wide}, {"-a", fits}, {"-c", "three"}, {"-d", "four"}}, 2),
      "T\n  -b   One" + std::string(28, ' ') + "  -c   Three\n  -a   T" + std::string(30, 'o') +
          "  -d   Four\n  -w   W" + std::string(31, 'i') + std::string(40, ' ') + "\n");
}

std::string filled(const std::string& text, const std::string& padding) {
  return write_to_string([&](FILE* out) { fill_text(out, text.c_str(), padding.c_str()); });
}

// count copies of "abcdef" joined by blanks: blanks stand at 6, 13, 20, ...
std::string words(int count) {
  std::string text = "abcdef";
  for (int i = 1; i < count; ++i)
    text += " abcdef";
  return text;
}

TEST(FillText, WrapsAtBlanksAndIndentsContinuationsAndKeepsLongWordsWhole) {
  EXPECT_EQ(filled("", "    "), "\n");
  // The first line may reach column 79 - padding, later ones as far behind the
  // previous break. A padding of 10 leaves 69, with a blank right at 69; indent 11.
  const std::string indent(11, ' ');
  EXPECT_EQ(filled(words(25), std::string(10, '.')),
            words(10) + "\n" + indent + words(9) + "\n" + indent + words(6) + "\n");

  const std::string huge(100, 'x');
  EXPECT_EQ(filled("short " + huge + " tail", ""), "short\n " + huge + "\n tail\n");
  EXPECT_EQ(filled("abc " + std::string(66, 'x') + " d", std::string(10, '.')),  // 70 is too far
            "abc\n" + indent + std::string(66, 'x') + " d\n");
  EXPECT_EQ(filled("one two", std::string(100, ' ')), "one\n" + std::string(101, ' ') + "two\n");
}

}  // namespace
