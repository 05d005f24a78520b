// Merging the option sets of several files into one accumulating object:
// each option follows the policy of its table row, groups of mutually
// exclusive options are resolved by one override, and whatever is taken
// from a further file is applied as a token of the receiver.
#include <cstdlib>
#include <cstring>
#include <memory>

#include "DIAG/messages.h"
#include "options/option_engine.h"

namespace {

// get_argument's record, whose list (if any) is released with it.
struct held_argument {
  an_argument_t arg{};
  held_argument(const option_engine& options, int id) { options.get_argument(id, &arg); }
  explicit held_argument(const an_argument_t& given) : arg(given) {}
  held_argument(const held_argument&) = delete;
  held_argument& operator=(const held_argument&) = delete;
  ~held_argument() {
    if (arg.type == argument_list) std::free(arg.value.list);
  }
};

bool is_set(const option_engine& options, int id) {
  return options.option_state[id] != 0;
}

// The first member of the group that the object has set, or -1.
int member_set(const option_engine& options, const merge_group& group) {
  for (const int* member = group.members; *member >= 0; ++member)
    if (is_set(options, *member)) return *member;
  return -1;
}

// The custom policy's callable: equal arguments merge into themselves, other
// pairs as the row's pair table says (in either order). False: incompatible.
bool merge_by_pairs(const merge_pair* pairs, const an_argument_t& mine, const an_argument_t& theirs,
                    an_argument_t* merged) {
  if (mine == theirs) {
    *merged = theirs;
    return true;
  }
  if (mine.type != 0 || theirs.type != 0) return false;
  for (const merge_pair* pair = pairs; pair && pair->merged; ++pair) {
    bool forward = pair->first == mine.value.num && pair->second == theirs.value.num;
    bool backward = pair->first == theirs.value.num && pair->second == mine.value.num;
    if (forward || backward) {
      *merged = an_argument_t{0, {.num = pair->merged}, 0};
      return true;
    }
  }
  return false;
}

}  // namespace

// ------------------------------------------------------------ comparisons

bool operator==(const an_argument_t& a, const an_argument_t& b) {
  if (a.type != b.type) return false;
  switch (a.type) {
    case argument_signed:
    case argument_unsigned:
      return a.value.unum == b.value.unum;
    case argument_text:
      if (!a.value.text || !b.value.text) return a.value.text == b.value.text;
      return std::strcmp(a.value.text, b.value.text) == 0;
    case argument_list:
      if (a.count != b.count) return false;
      for (uint32_t i = 0; i < a.count; ++i)
        if (!(a.value.list[i] == b.value.list[i])) return false;
      return true;
    default:
      return true;
  }
}

bool operator>(const an_argument_t& a, const an_argument_t& b) {
  if (a.type == argument_missing) return false;
  if (b.type == argument_missing) return true;
  if (a.type != b.type) return false;
  switch (a.type) {
    case argument_signed:
      return a.value.num > b.value.num;
    case argument_unsigned:
      return a.value.unum > b.value.unum;
    case argument_text:
      return std::strcmp(a.value.text ? a.value.text : "", b.value.text ? b.value.text : "") > 0;
    default:
      return false;
  }
}

bool operator<(const an_argument_t& a, const an_argument_t& b) {
  return b > a;
}

// ------------------------------------------------------------ applying

// Hands the index-th argument of other's option to the receiver's scanner,
// as the token that export_option gives.
void option_engine::apply_from(const option_engine& other, int id, int index) {
  std::unique_ptr<char, decltype(&std::free)> text(other.export_option(id, index), std::free);
  if (text) process_option(text.get() + 1, nullptr);
}

// Every argument of other's option, or the option alone if it has none.
void option_engine::apply_all_from(const option_engine& other, int id) {
  int count = other.getargcount(id);
  for (int index = 0; index < (count ? count : 1); ++index)
    apply_from(other, id, index);
}

// ------------------------------------------------------------ merging

void option_engine::merge_init(const option_engine& other) {
  merging = true;
  for (unsigned id = 0; id < table_->n; ++id) {
    merge_policy_fn policy = table_->merge_policies[id].policy;
    if (policy && policy != &option_engine::merge_policy_none && is_set(other, id))
      apply_from(other, static_cast<int>(id), 0);
  }
  merging = false;
}

void option_engine::merge_options(const option_engine& other) {
  merging = true;
  for (unsigned n = 0; n < table_->n; ++n) {
    int id = static_cast<int>(n);
    if (is_set(*this, id)) do_merge_conflicts(id, other);
    if (table_->mutex_merge_override_functions[id] && mutex_merge_override(id, other)) continue;
    if (merge_policy_fn policy = table_->merge_policies[id].policy) (this->*policy)(id, other);
  }
  merging = false;
}

void option_engine::do_merge_conflicts(int id, const option_engine& other) {
  if (!valid(id)) return;
  const uint8_t* cells = table_->merge_conflicts + static_cast<size_t>(id) * table_->n;
  for (unsigned that = 0; that < table_->n; ++that) {
    if (!is_set(other, that) || cells[that] != 3) continue;
    std::string theirs = other.format_of_option(static_cast<int>(that));
    std::string mine = format_of_option(id);
    DIAG::optgen_merge_conflict_option diag(__FILE__, __LINE__, theirs.c_str(), other.source_name,
                                            mine.c_str());
    report_diagnostic(diag);
  }
}

// Resolves the option's group as one: when other has a member set that the
// receiver hasn't, that member replaces the receiver's, once, at the
// member's own turn; every member's policy is skipped meanwhile.
bool option_engine::mutex_merge_override(int id, const option_engine& other) {
  const merge_group* group = table_->mutex_merge_override_functions[id];
  if (!valid(id) || !group) return false;
  int theirs = member_set(other, *group);
  int mine = member_set(*this, *group);
  if (theirs < 0 || theirs == mine) return false;
  if (id == theirs) {
    for (const int* member = group->members; *member >= 0; ++member)
      if (*member != theirs && is_set(*this, *member)) clearopt(*member);
    apply_all_from(other, id);
  }
  return true;
}

// ------------------------------------------------------------ policies

void option_engine::merge_policy_none(int, const option_engine&) {}

void option_engine::merge_policy_main(int, const option_engine&) {}

void option_engine::report_exact_mismatch(int id, const option_engine& other) {
  std::unique_ptr<char, decltype(&std::free)> theirs(other.export_option(id, 0), std::free);
  std::unique_ptr<char, decltype(&std::free)> mine(export_option(id, 0), std::free);
  DIAG::optgen_exact_args_incompatible diag(__FILE__, __LINE__, theirs.get(), other.source_name,
                                            mine.get());
  report_diagnostic(diag);
}

void option_engine::merge_policy_exact(int id, const option_engine& other) {
  bool mine = is_set(*this, id), theirs = is_set(other, id);
  if (mine && !theirs) {
    std::unique_ptr<char, decltype(&std::free)> text(export_option(id, 0), std::free);
    DIAG::optgen_exact_set_in_previous_files diag(__FILE__, __LINE__, text.get(),
                                                  other.source_name);
    report_diagnostic(diag);
  } else if (theirs && !mine) {
    std::unique_ptr<char, decltype(&std::free)> text(other.export_option(id, 0), std::free);
    DIAG::optgen_exact_not_set_in_previous_files diag(__FILE__, __LINE__, text.get(),
                                                      other.source_name);
    report_diagnostic(diag);
  } else if (mine && theirs) {
    merge_policy_exact_notset(id, other);
  }
}

void option_engine::merge_policy_exact_notset(int id, const option_engine& other) {
  if (!is_set(*this, id) || !is_set(other, id)) return;
  held_argument mine(*this, id), theirs(other, id);
  if (!(mine.arg == theirs.arg)) report_exact_mismatch(id, other);
}

void option_engine::merge_policy_or(int id, const option_engine& other) {
  if (is_set(other, id)) apply_all_from(other, id);
}

void option_engine::merge_policy_and(int id, const option_engine& other) {
  if (!is_set(other, id) && is_set(*this, id)) clearopt(id);
}

// A one-of value compares by its place in the item list, others as they are.
an_argument_t option_engine::ordered_argument(int id) const {
  an_argument_t arg{};
  get_argument(id, &arg);
  if (kind(id) != kind_oneof) return arg;
  long place = 0;
  for (const option_item* item = row(id).item_list; item && item->text; ++item, ++place)
    if (item->value == arg.value.num) break;
  arg.value.num = place;
  return arg;
}

void option_engine::merge_extreme(int id, const option_engine& other, bool greater) {
  if (!is_set(other, id)) return;
  if (is_set(*this, id)) {
    held_argument mine(ordered_argument(id)), theirs(other.ordered_argument(id));
    if (!(greater ? theirs.arg > mine.arg : theirs.arg < mine.arg)) return;
  }
  apply_from(other, id, 0);
}

void option_engine::merge_policy_max(int id, const option_engine& other) {
  merge_extreme(id, other, true);
}

void option_engine::merge_policy_min(int id, const option_engine& other) {
  merge_extreme(id, other, false);
}

void option_engine::merge_policy_custom(int id, const option_engine& other) {
  if (!is_set(*this, id) || !is_set(other, id)) return;
  held_argument mine(*this, id), theirs(other, id);
  an_argument_t merged{};
  if (!merge_by_pairs(table_->merge_policies[id].pairs, mine.arg, theirs.arg, &merged))
    report_exact_mismatch(id, other);
  else if (merged == theirs.arg)
    apply_from(other, id, 0);
}
