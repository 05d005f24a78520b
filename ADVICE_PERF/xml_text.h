#pragma once
// Text that XML 1.0 can carry. Documents take option values and file contents
// as they come, so any byte may reach them; a strict reader refuses a document
// that holds a control character or a byte that isn't UTF-8.

#include <string>
#include <string_view>

// The replacement for whatever XML 1.0 can't carry: U+FFFD, in UTF-8.
inline constexpr std::string_view xml_replacement_char = "\xEF\xBF\xBD";

// text with each byte that doesn't begin a well-formed UTF-8 sequence, and each
// character outside XML 1.0's Char production (controls other than TAB, LF and
// CR; U+FFFE and U+FFFF), replaced by U+FFFD. Text that needs no change comes
// back as it is, so applying it twice gives what applying it once gives.
std::string strict_xml_text(std::string_view text);
