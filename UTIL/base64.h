#pragma once
// Carried for the toolchain's other tools; no step of an advzorv run calls it.
// Base64 (RFC 4648 alphabet, "=" padding), one group of 24 bits at a time. The
// encoders return one static buffer of four characters and a terminator, which
// the next call overwrites.

// The four characters of the low 24 bits of value; bits counts how many of them,
// from the top, are meaningful: below 16 the last two characters are "=", below
// 24 the last one is.
const char* base64_encode(unsigned long value, int bits);

// The four characters of up to three bytes; missing bytes count as 0 and are
// padded with "=". A count above 3 takes the first three.
const char* base64_encode(const unsigned char* bytes, int count);

// The 24-bit value of four characters; "=" and characters outside the alphabet
// count as 0. A text shorter than four characters counts its missing ones as 0.
unsigned long base64_decode(const char* text);
