// The rows of the message catalogue, generated from messages.def.
#include <iterator>

#include "DIAG/catalogue.h"
#include "DIAG/diag.h"

DIAG_INFO DIAG_INFO_ENTRY[] = {
#define DIAG_ROW(code, severity, internal, non_discretionary, std_msg) \
  {code, std_msg, nullptr, dc_##severity, internal, non_discretionary},
#include "DIAG/messages.inc"
    {0, nullptr, nullptr, dc_suppressed, false, false},
};

static_assert(std::size(DIAG_INFO_ENTRY) == std::size(DIAG::catalogue_codes),
              "DIAG_INFO_ENTRY holds every catalogue row and the terminating row");
