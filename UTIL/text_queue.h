#pragma once
// One process-wide queue of key/text pairs, printed on stdout as a titled listing
// of one or two columns with word wrapping at 79 columns. Build it with
// init_queue and queueup, then print_queue prints and empties it.
#include <cstdio>

enum sort_method {
  sort_by_key = 1,              // by key, leading dashes skipped (also any unknown value)
  sort_as_added = 2,            // in the order of queueup
  sort_by_priority = 3,         // highest priority first, by key among equals
  long_key_on_own_line = 0x80,  // print_queue flag: a key wider than the column
                                // gets a line of its own in the one-column form
};

// Starts a new listing, dropping any earlier one. A key_width of 0 means as wide
// as the longest key queued so far in the process.
void init_queue(const char* title, int key_width, sort_method sort);

// Adds a copy of key and text (its first character upper-cased).
void queueup(const char* key, const char* text, int priority);

// Prints the listing and empties the queue; returns 1. An empty queue prints
// nothing, keeps its title and returns 0. columnation 0 or 1: one column, else two
// (one column when the queue holds a single entry). extra_indent widens the
// padding of continuation lines in the one-column form.
int print_queue(int columnation, sort_method flags, int extra_indent);

// Prints text folded to 79 columns less the length of padding, each continuation
// line indented by that length plus one; ends with a line end.
void fill_text(FILE* stream, const char* text, const char* padding);
