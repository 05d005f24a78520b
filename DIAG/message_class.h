#pragma once
// The one pattern of all message classes: a DIAGNOSTIC bound to one catalogue
// row, with one field per placeholder of the row's text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "DIAG/catalogue.h"
#include "DIAG/diag.h"

namespace DIAG {

// Field kinds: a "%s" placeholder holds a text, a "%u" an unsigned number.
struct str {
  using param = const char*;
  using stored = std::string;
  // A null text is kept as printf would show it.
  static stored store(const char* value) { return value ? value : "(null)"; }
  static const char* arg(const stored& value) { return value.c_str(); }
  static constexpr const char* dump_format = "(%s)";
};

struct u32 {
  using param = unsigned;
  using stored = uint32_t;
  static stored store(unsigned value) { return value; }
  static unsigned arg(stored value) { return value; }
  static constexpr const char* dump_format = "(%u)";
};

// How a class departs from the plain pattern (the catalogue's form column).
enum class form {
  pattern,   // fields fill the text in report, get_sp_buffer and dump
  one_arg,   // one field, passed for every placeholder
  base_ops,  // report like pattern; the other operations are DIAGNOSTIC's
  paren,     // report prints the one text field as "(%s)"; the rest is DIAGNOSTIC's
};

template <class Self, std::size_t Row, int32_t Code, form Form, std::size_t Uses, class... Fields>
class message : public DIAGNOSTIC {
  static_assert(Row < catalogue_rows && catalogue_codes[Row] == Code,
                "message class bound to the wrong catalogue row");
  static_assert(Form == form::one_arg ? sizeof...(Fields) == 1 : sizeof...(Fields) == Uses,
                "fields must match the placeholders of the text");
  static_assert(Form != form::paren || std::is_same_v<std::tuple<Fields...>, std::tuple<str>>,
                "a paren class has exactly one text field");

  static constexpr bool keeps_base_ops = Form == form::base_ops || Form == form::paren;

 public:
  message(const char* file, unsigned line, typename Fields::param... values)
      : DIAGNOSTIC(&DIAG_INFO_ENTRY[Row], file, line), fields_(Fields::store(values)...) {}

  DIAGNOSTIC* alloc() const override { return new Self(static_cast<const Self&>(*this)); }

  int report() override {
    int count = print_header();
    if constexpr (Form == form::paren) {
      count += print("(%s)", std::get<0>(fields_).c_str());
    } else {
      count += with_text_args([this](auto... args) { return print(info->std_msg, args...); });
    }
    flush();
    return count;
  }

  char* get_sp_buffer() override {
    if constexpr (keeps_base_ops) {
      return DIAGNOSTIC::get_sp_buffer();
    } else {
      return with_text_args([this](auto... args) { return sp_print(info->std_msg, args...); });
    }
  }

  void dump() override {
    DIAGNOSTIC::dump();
    if constexpr (!keeps_base_ops) {
      std::apply(
          [](const auto&... values) {
            (std::printf(Fields::dump_format, Fields::arg(values)), ...);
          },
          fields_);
      std::printf("\n");
    }
  }

 private:
  // Calls fn with the printf arguments of the row's text.
  template <class Fn>
  auto with_text_args(Fn fn) const {
    if constexpr (Form == form::one_arg) {
      return repeat_first(fn, std::make_index_sequence<Uses>());
    } else {
      return std::apply([&](const auto&... values) { return fn(Fields::arg(values)...); }, fields_);
    }
  }

  template <class Fn, std::size_t... I>
  auto repeat_first(Fn fn, std::index_sequence<I...>) const {
    using field = std::tuple_element_t<0, std::tuple<Fields...>>;
    return fn(((void)I, field::arg(std::get<0>(fields_)))...);
  }

  std::tuple<typename Fields::stored...> fields_;
};

}  // namespace DIAG
