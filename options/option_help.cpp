// Help: the overview of all options and the search by topic.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UTIL/process_end.h"
#include "UTIL/strcase.h"
#include "UTIL/text_queue.h"
#include "UTIL/version.h"
#include "options/option_engine.h"

namespace {

const char* const help_indent = "                          ";  // 26 blanks

std::string plain(const char* scrambled) {
  return option_engine::rot13(scrambled);
}

bool starts_with_nocase(const char* scrambled_form, const char* topic) {
  std::string form = plain(scrambled_form);
  return strcaseincmp(form.c_str(), topic, static_cast<unsigned>(std::strlen(topic))) == 0;
}

bool row_matches(const option_row& row, const char* topic) {
  if (strcaseistr(plain(row.help_text).c_str(), topic)) return true;
  if (strcaseistr(plain(row.long_help_text).c_str(), topic)) return true;
  if (starts_with_nocase(row.long_form, topic)) return true;
  for (const char* const* alt = row.alt_forms; alt && *alt; ++alt)
    if (starts_with_nocase(*alt, topic)) return true;
  return false;
}

std::string opt_txt(const option_row& row) {
  return option_engine::get_opt_txt(row.long_form, row.alt_forms, row.short_form, row.arg_text,
                                    row.arg_optional);
}

}  // namespace

const char* option_engine::get_opt_txt(const char* long_form, const char* const* alt_forms,
                                       const char* short_form, const char* arg_text, int optional) {
  static std::string text;
  std::string shown = short_form ? plain(short_form) : "";
  text = shown;
  auto add = [](const std::string& form) {
    if (!text.empty()) text += ',';
    text += form;
  };
  add(plain(long_form));
  for (const char* const* alt = alt_forms; alt && *alt; ++alt) {
    std::string form = plain(*alt);
    if (!short_form || form != shown) add(form);
  }
  std::string arg = plain(arg_text);
  if (!arg.empty()) {
    if (optional) text += '[';
    text += '=';
    text += arg;
    if (optional) text += ']';
  }
  return text.c_str();
}

void option_engine::dump_class(int help_class) const {
  if (help_class < 0 || static_cast<unsigned>(help_class) >= table_->h) return;
  std::string title = plain(table_->class_descriptions[help_class]);
  init_queue(title.c_str(), 28, sort_by_priority);
  for (const option_row* r = table_->option_definitions;
       static_cast<unsigned>(r->help_class) != table_->h; ++r) {
    if (r->help_class != help_class || r->hidden || r->internal) continue;
    std::string key = opt_txt(*r);
    queueup(key.c_str(), plain(r->help_text).c_str(), static_cast<int>(r->sort_order));
  }
  if (print_queue(1, long_key_on_own_line, 0)) std::printf("\n");
}

void option_engine::dump_basic_class() const {
  init_queue("Basic Options:", 28, sort_by_priority);
  for (const option_row* r = table_->option_definitions;
       static_cast<unsigned>(r->help_class) != table_->h; ++r) {
    if (r->basic_order == 0 || r->hidden || r->internal) continue;
    std::string key = opt_txt(*r);
    queueup(key.c_str(), plain(r->help_text).c_str(), static_cast<int>(r->basic_order));
  }
  if (print_queue(1, long_key_on_own_line, 0)) std::printf("\n");
}

void option_engine::display_option_help(const char* topic) const {
  // The program is named by its file name alone, here and in the usage
  // text that follows the overview.
  const char*& program = *table_->family->executable_name;
  if (const char* slash = std::strrchr(program, '/')) program = slash + 1;

  if (!topic || !*topic) {
    print_banner(stdout);
    std::printf("\n");
    std::printf("Usage: %s [-options] filename\n\n", program);
    std::printf("Use '%s --help <option>' for more information on a particular option.  Use\n",
                program);
    std::printf("'%s --help <text>' to search options for information regarding <text>.\n\n",
                program);
    std::printf(
        "Option arguments surrounded by [] declare they are optional.  Option arguments\n"
        "separated by commas specify that the option's argument must be chosen from\n"
        "those arguments listed.\n\n");
    std::printf(
        "When shown, option arguments and defaults apply to the usage of both long and\n"
        "short option forms.\n\n");
    dump_basic_class();
    for (unsigned cls = 0; cls < table_->h; ++cls)
      dump_class(static_cast<int>(cls));
    return;
  }

  bool matched = false;
  for (const option_row* r = table_->option_definitions;
       static_cast<unsigned>(r->help_class) != table_->h; ++r) {
    if (r->hidden || r->internal || !row_matches(*r, topic)) continue;
    matched = true;
    std::string left = opt_txt(*r);
    std::printf("  %-20s ", left.c_str());
    if (left.size() >= 21) std::printf("\n  %-20s ", " ");
    std::printf("%c%c ", r->hidden ? 'H' : ' ', r->internal ? 'I' : ' ');
    std::string text = plain(*r->long_help_text ? r->long_help_text : r->help_text);
    std::fflush(stdout);
    fill_text(stdout, text.c_str(), help_indent);
  }
  if (!matched) std::printf(">> Help: No options match the string '%s'\n", topic);
  end_process(0);
}
