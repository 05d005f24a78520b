#include "UTIL/envvar.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/util/temp_dir.h"

namespace {

const char* const plain = "ADVZORV_UTIL_TEST_VAR";
const char* const prefixed = "Zorv_ADVZORV_UTIL_TEST_VAR";

TEST(EnvVar, PathsAreTrimmedAndWarnedAboutWhenBlankSeparatedAndNamingNoFile) {
  ScopedEnv no_plain(plain, nullptr), no_prefixed(prefixed, nullptr);
  std::vector<std::string> seen;
  auto collect = [&](const char* path) { seen.emplace_back(path); };
  extract_paths(plain, collect);  // unset: nothing
  setenv(plain, " ;; /a dir/x  ; \t/b  ;", 1);
  extract_paths(plain, collect);
  EXPECT_EQ(seen, (std::vector<std::string>{"/a dir/x", "/b"}));

  auto warning = [](const std::string& value) {
    setenv(prefixed, value.c_str(), 1);
    char *name = reinterpret_cast<char*>(1), *trimmed = name;
    const int result = gen_envvar_warning(plain, &name, &trimmed);
    const std::string text = std::to_string(result) + " " + (name ? name : "<null>") + " " +
                             (trimmed ? trimmed : "<null>");
    delete[] name;
    delete[] trimmed;
    return text;
  };
  TempDir tmp;
  const std::string missing = tmp.file("no such dir  /other");
  EXPECT_EQ(warning("  " + missing + "\t"), std::string("1 ") + prefixed + " " + missing);
  const std::string existing = tmp.file("a file");
  write_file(existing, "");
  for (const std::string& value : {existing, existing + ";/no", std::string("/no such;/x"),
                                   std::string("/single/path"), std::string()})
    EXPECT_EQ(warning(value), "0 <null> <null>") << value;
}

}  // namespace
