// What the link file reader takes from a file where the parser's lexical rules
// decide it: references, white space, split text, left-out parts that are not
// well-formed or nested deep, several top-level nodes. (What a file lacking a
// required part throws, the differential fuzz corpus shows.)
#include "ADVICE_PERF/link_file.h"
#include "ADVICE_PERF/xml_read.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The contents in short: time, errors and version, then each component as
// id=uninitialized, each group as id=size:name:components.
std::string summary(const char* path) {
  const LINK_FILE link = read_link_contents(path);
  std::string text = std::to_string(link.link_time) + " " + std::to_string(link.link_errors) +
                     " v" + std::to_string(link.version);
  for (const auto& [id, uninitialized] : link.object_components)
    text += " " + id + "=" + (uninitialized ? "u" : "i");
  for (const auto& [id, sect] : link.sections) {
    text += " " + id + "=" + std::to_string(sect.size) + ":" + sect.name + ":";
    for (const auto& component : sect.components)
      text += component + ",";
  }
  return text;
}

std::string link_file(const std::string& time, const std::string& components,
                      const std::string& groups) {
  return "<link_info><link_time>" + time + "</link_time>" + components + groups + "</link_info>";
}

const std::string no_groups = "<logical_group_list/>";
const std::string one_component = "<object_component_list><object_component id = 'a'/>"
                                  "</object_component_list>";

// A link file whose left-out element x holds levels - 1 elements around innermost.
std::string nested(int levels, const std::string& innermost) {
  std::string open, close;
  for (int level = 1; level < levels; ++level)
    open += "<a>", close += "</a>";
  return link_file("1", one_component, no_groups) + "<x>" + open + innermost + close + "</x>";
}

TEST(LinkFile, ReadsWhatTheParserWouldGiveTheTree) {
  const struct {
    const char* what;
    std::string xml;
    std::string expected;
  } cases[] = {
      {"references expand in kept text and attributes",
       link_file("&#x31;&#50;", "<object_component_list><object_component id='a&amp;&#x42;&lt;"
                                "&amp &x;'/></object_component_list>",
                 no_groups),
       "18 -1 v1 a&B<&amp &x;=i"},
      {"a hexadecimal digit counts in a decimal reference, and the code wraps",
       link_file("&#4a;&#x10000000000000031;", "<object_component_list/>", no_groups), "33 -1 v1"},
      {"text pieces join, each trimmed and condensed but for sections and attributes; a "
       "reference of 2, 3 or 4 bytes",
       link_file(" 0x1 <!-- c --> 2 <b>9</b><![CDATA[3]]>4\n", one_component,
                 "<logical_group_list><logical_group id=' g\t1 '><size>2</size>"
                 "<name>\n .text \t x&#xe9;&#x20AC;&#128512; <![CDATA[ y ]]></name><contents/>"
                 "</logical_group></logical_group_list>"),
       "4660 -1 v1 a=i  g\t1 =2:.text x\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 y :"},
      {"the first of repeated elements or attributes counts; a bool may be a word; v2 is none",
       link_file("1</link_time><version>v2</version><link_time>2",
                 "<object_component_list><object_component id='a' id='b'><uninitialized>true"
                 "</uninitialized><uninitialized>0</uninitialized></object_component>"
                 "<object_component id='c'><uninitialized>yes</uninitialized>"
                 "</object_component></object_component_list>",
                 no_groups),
       "1 -1 v1 a=u c=i"},
      {"the root counts behind another top-level element; a version that is a number",
       "<x/>" + link_file("1", "<version>7</version>" + one_component, no_groups), "1 -1 v7 a=i"},
      {"a bad reference in a left-out attribute empties the file",
       link_file("1", one_component, no_groups) + "<x y='&#x110000;'/>", "0 -1 v-1"},
      {"a reference needs its ';'", link_file("&#x31 2", one_component, no_groups), "0 -1 v-1"},
      {"a document type's subset is passed over, '>' and all",
       "<!DOCTYPE l [<!ENTITY e '><x>'>]>" + link_file("1", one_component, no_groups), "1 -1 v1 a=i"},
      {"nesting up to the bound in a left-out part", nested(max_xml_depth, "<b/>"), "1 -1 v1 a=i"},
      {"one level more", nested(max_xml_depth, "<b></b>"), "0 -1 v-1"},
  };
  TempDir dir;
  const std::string path = dir.file("link.xml");
  for (const auto& c : cases) {
    write_file(path, c.xml);
    EXPECT_EQ(summary(path.c_str()), c.expected) << c.what;
  }
}

}  // namespace
