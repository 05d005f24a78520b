#pragma once
// Code size by logical group of one link, and what changed between two links:
// the figures behind the sizes and diff views, counted by the tool's own rules.

#include "ADVICE_PERF/link_data.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// "counted", or why a group doesn't count: "uninitialized", "debug",
// "no components".
const char* count_word(group_count count);

// The logical groups of a link, largest first (ties by name, then id), and
// the code size they give.
struct SIZE_TABLE {
  std::vector<GROUP_SIZE> groups;
  uint32_t code_size = 0;
};

SIZE_TABLE size_table(const LINK_DATA& link);

// One section name in two links: the bytes of all groups of that name in
// each, or nothing where the link has no such group.
struct SECTION_CHANGE {
  std::string name;
  std::optional<uint64_t> old_size, new_size;
  bool counts = false;  // whether it counts toward the code size (in the new link if there)

  int64_t delta() const;
  // "grew", "shrank", "same", "appeared" or "went".
  const char* change() const;
};

// Sections of both links by largest absolute change (ties by name), and the
// code size of each link.
struct SIZE_DIFF {
  std::vector<SECTION_CHANGE> sections;
  uint32_t old_code_size = 0, new_code_size = 0;

  int64_t code_size_delta() const;
};

SIZE_DIFF size_diff(const LINK_DATA& old_link, const LINK_DATA& new_link);

// The change from old_size to new_size in percent of old_size; nothing when
// old_size is 0.
std::optional<double> percent_change(uint64_t old_size, uint64_t new_size);
