#pragma once
// The message classes of the catalogue, one per row that has a class name,
// e.g. DIAG::optgen_bad_argument(__FILE__, __LINE__, option, choices).report();
#include "DIAG/message_class.h"

namespace DIAG {

#define DIAG_CLASS(name, row, code, form_word, uses, ...)                                   \
  class name final                                                                          \
      : public message<name, row, code, form::form_word, uses __VA_OPT__(, ) __VA_ARGS__> { \
   public:                                                                                  \
    using message::message;                                                                 \
  };
#include "DIAG/messages.inc"

}  // namespace DIAG
