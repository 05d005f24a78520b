// Members shared by every option family, included inside the family's class
// body. The including header defines OO_TABLE_INC, the family's generated
// file ("options/<family>.inc"); each #include below compiles one section.
#ifndef OO_TABLE_INC
#error "define OO_TABLE_INC, the family's generated table, before including family_members.h"
#endif
public:
// Options in the alphabetical order of their internal names.
enum option_id {
#define OPTION_ID(name) name,
#include OO_TABLE_INC
  OPTION_COUNT
};

// Help groups in the order the table declares them.
enum help_class {
#define HELP_CLASS(name, title) HELP_##name,
#include OO_TABLE_INC
  HELP_CLASS_COUNT
};

// Class columns are numbered; class 0 stands for all options.
enum class_id : int { CLASS_ALL = 0 };

// The value of each one-of word: ITEM_<OPTION>_<WORD>.
#define ITEM_VALUE(option, word, value) static constexpr long ITEM_##option##_##word = value;
#include OO_TABLE_INC

// Name under which help speaks of the program; "<toolname>" until set.
static const char* executable_name;
// The argument stream, through which handlers fetch a following token.
static const char* (*next_arg)();
static const option_table table_data;

using option_engine::clearopt;
using option_engine::setopt;
void setopt(class_id cls) {
  setclassmembers(cls);
}
void clearopt(class_id cls) {
  clearclassmembers(cls);
}
