#include "UTIL/text_queue.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UTIL/safemalloc.h"

namespace {

struct entry {
  char* key;
  char* text;
  int32_t priority;
  entry* next;
};

// The one queue of the process.
char* title = nullptr;
entry* head = nullptr;
int32_t key_width = 0;  // negated width given to init_queue
sort_method sort = sort_by_key;
int32_t longest_key = 0;  // longest key ever queued; never reset

const int two_column_room = 37;  // key, text and two separators of a fitting entry
const int two_column_text = 35;  // key and text of a left-column cell
const int single_row_text = 76;  // key and text of a non-fitting entry's line

// Key order: plain byte comparison after skipping leading dashes of both keys.
bool key_greater(const char* a, const char* b) {
  while (*a == '-')
    ++a;
  while (*b == '-')
    ++b;
  return strcmp(a, b) > 0;
}

void free_queue() {
  free(title);
  title = nullptr;
  while (head != nullptr) {
    entry* next = head->next;
    free(head->key);
    free(head->text);
    free(head);
    head = next;
  }
}

// Links e in ahead of *link.
void insert_at(entry** link, entry* e) {
  e->next = *link;
  *link = e;
}

// The link ahead of which a new entry goes under the current sort method.
entry** insertion_link(const entry* e) {
  entry** link = &head;
  switch (sort) {
    case sort_as_added:
      while (*link != nullptr)
        link = &(*link)->next;
      return link;
    case sort_by_priority:
      while (*link != nullptr && (*link)->priority >= e->priority &&
             !((*link)->priority == e->priority && key_greater((*link)->key, e->key)))
        link = &(*link)->next;
      return link;
    default:
      while (*link != nullptr && !key_greater((*link)->key, e->key))
        link = &(*link)->next;
      return link;
  }
}

// Whether e goes in a column of the two-column layout with keys of width.
bool fits(const entry* e, int width) {
  return static_cast<int>(strlen(e->text)) + width + 2 <= two_column_room;
}

entry* next_fitting(entry* e, int width) {
  while (e != nullptr && !fits(e, width))
    e = e->next;
  return e;
}

void print_title() {
  printf("%s\n", title != nullptr ? title : "");
}

void print_one_column(int width, bool long_key_alone, int extra) {
  const std::string padding(static_cast<size_t>(std::max(width + extra + 3, 0)), ' ');
  print_title();
  for (const entry* e = head; e != nullptr; e = e->next) {
    if (long_key_alone && static_cast<int>(strlen(e->key)) > width)
      printf("  %s\n%*s", e->key, width + 3, "");
    else
      printf("  %-*.*s ", width, width, e->key);
    fill_text(stdout, e->text, padding.c_str());
  }
}

void print_two_columns(int width) {
  print_title();
  int fitting = 0;
  for (const entry* e = head; e != nullptr; e = e->next)
    fitting += fits(e, width);
  const int rows = (fitting + 1) / 2;

  // The left column holds the first `rows` fitting entries, so it never runs out.
  entry* left = next_fitting(head, width);
  entry* right = left;
  for (int i = 0; i < rows; ++i)
    right = next_fitting(right->next, width);

  const int left_text = two_column_text - width;
  for (int row = 0; row < rows; ++row) {
    printf("  %-*.*s %-*.*s", width, width, left->key, left_text, left_text, left->text);
    left = next_fitting(left->next, width);
    if (right != nullptr) {
      printf("  %-*.*s %s\n", width, width, right->key, right->text);
      right = next_fitting(right->next, width);
    } else {
      printf("\n");
    }
  }

  const int wide_text = single_row_text - width;
  for (const entry* e = head; e != nullptr; e = e->next)
    if (!fits(e, width)) printf("  %-*s %-*.*s\n", width, e->key, wide_text, wide_text, e->text);
}

}  // namespace

void init_queue(const char* new_title, int width, sort_method method) {
  free_queue();
  title = new_title != nullptr ? safestrdup(new_title) : nullptr;
  key_width = -width;
  sort = method;
}

void queueup(const char* key, const char* text, int priority) {
  const int32_t key_length = static_cast<int32_t>(strlen(key));
  if (key_length > longest_key) longest_key = key_length;

  entry* e = static_cast<entry*>(safemalloc(sizeof(entry)));
  e->key = safestrdup(key);
  e->text = safestrdup(text);
  e->text[0] = static_cast<char>(toupper(static_cast<unsigned char>(e->text[0])));
  e->priority = priority;
  insert_at(insertion_link(e), e);
}

int print_queue(int columnation, sort_method flags, int extra_indent) {
  if (head == nullptr) return 0;
  const int width = key_width != 0 ? std::abs(key_width) : longest_key;
  if (columnation == 0 || columnation == 1 || head->next == nullptr)
    print_one_column(width, (flags & long_key_on_own_line) != 0, extra_indent);
  else
    print_two_columns(width);
  free_queue();
  return 1;
}
