// The advice document's entries: how they are read, written and looked up.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <boost/property_tree/exceptions.hpp>

#include <string>
#include <vector>

namespace {

class AdviceDocument : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string path = dir.file("advice.xml");
  const std::string no_link = dir.file("no_link.xml");
  LINK_DATA link{no_link.c_str()};

  void write_body(const std::string& inside) {
    write_file(path, "<body><version>1</version><timestamp>0x1</timestamp>" + inside + "</body>");
  }

  static std::vector<std::string> keys(const ADVICE& advice) {
    std::vector<std::string> result;
    for (const auto& [key, info] : advice.get_entries())
      result.push_back(key);
    return result;
  }
};

TEST_F(AdviceDocument, EntriesSurviveAWriteAndAReadUnchanged) {
  ADVICE first(path.c_str(), link);
  first.add_advice("31337", "unknown kind", "future_type", "", "v", "doSomething");
  first.add_advice("27011", "results", "build_results", "--opt_for_speed", "", "");
  first.output();
  EXPECT_EQ(ADVICE(path.c_str(), link).get_entries(), first.get_entries());
}

TEST_F(AdviceDocument, ReadingKeepsTheFirstOfTwoKeysAndIgnoresOtherElements) {
  write_body(
      "<current_settings><option name=\"--opt_level\" value=\"  --opt_level=9\"/>"
      "</current_settings>"
      "<advice diag_code=\"27008\" advice_type=\"opt_setting\" option=\"--opt_level\" value=\"3\""
      " action=\"gotoBuildOption:--opt_level\">first</advice>"
      "<note>skip me</note>"
      "<advice value=\"4\" option=\"o\" advice_type=\"t\" diag_code=\"27008\">second</advice>"
      "<advice diag_code=\"00001\" advice_type=\"t\" option=\"o\" value=\"v\">  text  </advice>");
  ADVICE advice(path.c_str(), link);
  EXPECT_EQ(keys(advice), (std::vector<std::string>{"00001", "27008"}));
  const ADVICE_INFO& kept = advice.get_entries().at("27008");
  EXPECT_EQ(kept.msg, "first");
  EXPECT_EQ(kept.value, "3");
  EXPECT_EQ(kept.action, "gotoBuildOption:--opt_level");
  EXPECT_EQ(advice.get_entries().at("00001").msg, "text");
  EXPECT_EQ(advice.get_entries().at("00001").action, "");
  // Settings are never read back.
  EXPECT_TRUE(advice.get_settings().empty());
  advice.output();
  EXPECT_EQ(read_file(path).find("current_settings"), std::string::npos);
}

TEST_F(AdviceDocument, AnEntryWithoutARequiredAttributeIsFatal) {
  const char* attributes[] = {"diag_code", "advice_type", "option", "value"};
  for (const char* missing : attributes) {
    std::string element = "<advice";
    for (const char* attribute : attributes)
      if (attribute != missing) element += std::string(" ") + attribute + "=\"x\"";
    write_body(element + ">text</advice>");
    EXPECT_THROW(ADVICE(path.c_str(), link), boost::property_tree::ptree_bad_path) << missing;
  }
}

}  // namespace
