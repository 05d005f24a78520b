#include "UTIL/envvar.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

const char* const plain = "ADVZORV_UTIL_TEST_VAR";
const char* const prefixed = "Zorv_ADVZORV_UTIL_TEST_VAR";

// Each test starts with neither variable set.
class EnvVar : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv(plain);
    unsetenv(prefixed);
  }
  void TearDown() override { SetUp(); }
};

std::string take(char* text) {
  const std::string copy = text ? text : "<null>";
  delete[] text;
  return copy;
}

TEST_F(EnvVar, PathsAreTrimmedAndWarnedAboutWhenBlankSeparatedAndNamingNoFile) {
  std::vector<std::string> seen;
  auto collect = [&](const char* path) { seen.emplace_back(path); };
  extract_paths(plain, collect);
  setenv(plain, " ; ;\n", 1);
  extract_paths(plain, collect);
  EXPECT_TRUE(seen.empty());

  setenv(plain, " ;; /a dir/x  ; \t/b  ;", 1);
  extract_paths(plain, collect);
  EXPECT_EQ(seen, (std::vector<std::string>{"/a dir/x", "/b"}));

  auto warning = [](const std::string& value) {
    setenv(prefixed, value.c_str(), 1);
    char* name = reinterpret_cast<char*>(1);
    char* trimmed = reinterpret_cast<char*>(1);
    const int result = gen_envvar_warning(plain, &name, &trimmed);
    return std::to_string(result) + " " + take(name) + " " + take(trimmed);
  };
  const std::string missing = testing::TempDir() + "no such dir  /other";
  EXPECT_EQ(warning("  " + missing + "\t"), std::string("1 ") + prefixed + " " + missing);

  const std::string existing = testing::TempDir() + "advzorv util test file";
  fclose(fopen(existing.c_str(), "w"));
  for (const std::string& value : {existing, existing + ";/no", std::string("/no such;/x"),
                                   std::string("/single/path"), std::string("  \t ")})
    EXPECT_EQ(warning(value), "0 <null> <null>") << value;
  remove(existing.c_str());
}

}  // namespace
