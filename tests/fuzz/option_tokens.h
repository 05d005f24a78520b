#pragma once
// The scanner harnesses' input: a command file whose words are the tokens.
#include <cstddef>
#include <cstdint>

// Hands each word of the input starting with '-' to scan (without the '-')
// while the stream is open; the option family's next_arg also reads from it.
// False when the run ended before the last word.
bool scan_tokens(const uint8_t* data, size_t size, const char* (**next_arg)(),
                 bool (*scan)(const char* option));
