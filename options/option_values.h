#pragma once
// What a table says about the values of one option: the option a spelling
// names, and the values its argument can take where the table lists them.
#include <string>
#include <vector>

#include "options/option_table.h"

// The id of the option that text spells in full, dashes included ("--opt_level",
// "-O"), matched as the table's scanner matches case; -1 when no spelling is text.
int option_spelled(const option_table& table, const std::string& text);

// The values of option id: the words of a one-of option that its table lists,
// in list order (deprecated and unlisted words left out), or every number of
// a numeric option with bounds, from the lowest to the highest. Empty for an
// option whose values the table doesn't enumerate: no argument, free text or
// a number without bounds.
std::vector<std::string> enumerated_values(const option_table& table, int id);
