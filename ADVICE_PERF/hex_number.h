#pragma once
// The one numeric text format of the documents: hexadecimal with the base shown,
// read and written exactly as an iostream set to hex | showbase does in the
// classic locale, without the cost of a stream per number.

#include <charconv>
#include <concepts>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace hex_number {

// Integers a stream reads and writes as numbers (not as characters or words).
template <typename T>
concept number = std::integral<T> && !std::same_as<T, bool> && sizeof(T) >= sizeof(short);

// The type a stream extracts into: short and int go through long and are then
// clamped to their range; every other type is extracted as itself.
template <number T>
using extracted = std::conditional_t<std::is_signed_v<T> && sizeof(T) < sizeof(long), long, T>;

// "0x" and lower-case digits; "0" for zero. Negative numbers show the bits of
// their unsigned twin.
template <number T>
std::string write(T value) {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  if (bits == 0) return "0";
  char text[2 + 2 * sizeof(T)] = {'0', 'x'};
  const auto end = std::to_chars(text + 2, text + sizeof text, bits, 16).ptr;
  return std::string(text, end);
}

// Takes one sign and one "0x" or "0X", then hex digits up to the first
// character that isn't one; leading white space is not skipped. No digits give 0; a value
// beyond the type gives its largest (or, negative, its smallest) value; a
// negative unsigned value wraps.
template <number T>
T read(std::string_view text) {
  using wide = extracted<T>;
  using bits = std::make_unsigned_t<wide>;
  const char* p = text.data();
  const char* const end = p + text.size();
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  if (p != end && *p == '0' && p + 1 != end && (p[1] == 'x' || p[1] == 'X')) p += 2;

  bits magnitude = 0;
  const auto error = std::from_chars(p, end, magnitude, 16).ec;
  if (error == std::errc::invalid_argument) return 0;
  const bool below = negative && std::is_signed_v<wide>;
  const bits limit = below ? bits(0) - static_cast<bits>(std::numeric_limits<wide>::min())
                           : static_cast<bits>(std::numeric_limits<wide>::max());
  wide value;
  if (error == std::errc::result_out_of_range || magnitude > limit)
    value = below ? std::numeric_limits<wide>::min() : std::numeric_limits<wide>::max();
  else
    value = static_cast<wide>(negative ? bits(0) - magnitude : magnitude);
  if constexpr (!std::is_same_v<wide, T>) {
    if (value < std::numeric_limits<T>::min()) return std::numeric_limits<T>::min();
    if (value > std::numeric_limits<T>::max()) return std::numeric_limits<T>::max();
  }
  return static_cast<T>(value);
}

}  // namespace hex_number
