#pragma once
// option_obj_test: the engine bound to the synthetic table engine_test.opt,
// with fixtures and checks for the tests on it.
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "DIAG/diag.h"
#include "options/option_engine.h"
#include "tests/util/capture.h"

#define OO_TABLE_INC "options/engine_test.inc"

class option_obj_test : public option_engine {
#include "options/family_members.h"

  explicit option_obj_test(bool with_defaults = true);
};

#undef OO_TABLE_INC

// Per option: its expected state, then its arguments joined by "," ("" for
// none; nullptr leaves them unchecked).
using option_facts = std::vector<std::tuple<int, int, const char*>>;
void expect_facts(const option_engine& options, const option_facts& facts);

// Collects what diagnostics print while it lives (through DIAGNOSTIC::fp_m).
class diag_capture : public captured_stream {
 public:
  diag_capture() : saved_(DIAGNOSTIC::fp_m) { DIAGNOSTIC::fp_m = file(); }
  ~diag_capture() { DIAGNOSTIC::fp_m = saved_; }

 private:
  FILE* saved_;
};

// Resets the class-wide switches that the tests change or the engine reads.
class options_fixture : public ::testing::Test {
 protected:
  void SetUp() override {
    DIAGNOSTIC::error_count_m = 0;
    DIAGNOSTIC::wrap_enabled_m = false;  // one line per message keeps the checks simple
    DIAGNOSTIC::remarks_m = false;
  }
};

// A fresh object over the synthetic table, and a way to scan one token into it.
class test_table_fixture : public options_fixture {
 protected:
  option_obj_test opts;
  int run(const char* text) { return opts.process_option(text, nullptr); }
};
