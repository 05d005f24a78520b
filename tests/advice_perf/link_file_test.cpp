// What the link file reader takes from a file where the parser's lexical rules
// decide it: references, white space, split text, left-out parts that are not
// well-formed, nesting, several top-level nodes, and the parts it requires.
#include "ADVICE_PERF/link_file.h"
#include "ADVICE_PERF/xml_read.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>

namespace {

// The contents in short: time, errors and version, then each component as
// id=uninitialized, each group as id=size:name:components; or what was thrown.
std::string summary(const char* path) {
  try {
    const LINK_FILE link = read_link_file(path);
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
  } catch (const std::exception& e) {
    return e.what();
  }
}

// A link file with the given time, component list and group list elements.
std::string link_file(const std::string& time, const std::string& components,
                      const std::string& groups) {
  return "<link_info><link_time>" + time + "</link_time>" + components + groups + "</link_info>";
}

const std::string no_groups = "<logical_group_list/>";
const std::string one_component = "<object_component_list><object_component id='a'/>"
                                  "</object_component_list>";

TEST(LinkFile, ReadsWhatTheParserWouldGiveTheTree) {
  const struct {
    const char* what;
    std::string xml;
    std::string expected;
  } cases[] = {
      {"references expand in kept text and attributes",
       link_file("&#x31;&#50;", "<object_component_list><object_component id='a&amp;&#x42;&lt;'/>"
                                "</object_component_list>",
                 no_groups),
       "18 -1 v1 a&B<=i"},
      {"a hexadecimal digit counts in a decimal reference, and the code wraps",
       link_file("&#4a;&#x10000000000000031;", "<object_component_list/>", no_groups),
       "33 -1 v1"},
      {"an unknown '&' stays as it is",
       link_file("1", "<object_component_list><object_component id='&amp &x;'/>"
                      "</object_component_list>",
                 no_groups),
       "1 -1 v1 &amp &x;=i"},
      {"text pieces around comments, elements and sections join, each trimmed",
       link_file(" 0x1 <!-- c --> 2 <b>9</b><![CDATA[3]]>4\n", "<object_component_list/>",
                 no_groups),
       "4660 -1 v1"},
      {"white space in text condenses to one space; sections and attributes keep theirs",
       link_file("1", one_component,
                 "<logical_group_list><logical_group id=' g\t1 '><size>2</size>"
                 "<name>\n .text \t x <![CDATA[ y ]]></name><contents/></logical_group>"
                 "</logical_group_list>"),
       "1 -1 v1 a=i  g\t1 =2:.text x y :"},
      {"the first of repeated elements and attributes counts",
       link_file("1</link_time><link_time>2", "<object_component_list><object_component "
                                              "id='a' id='b'><uninitialized>1</uninitialized>"
                                              "<uninitialized>0</uninitialized>"
                                              "</object_component></object_component_list>",
                 no_groups),
       "1 -1 v1 a=u"},
      {"uninitialized reads as a stream reads a bool, words included",
       link_file("1", "<object_component_list><object_component id='a'><uninitialized>true"
                      "</uninitialized></object_component><object_component id='b'>"
                      "<uninitialized>yes</uninitialized></object_component>"
                      "</object_component_list>",
                 no_groups),
       "1 -1 v1 a=u b=i"},
      {"kept names count only under their kept parent",
       "<x/><link_info><banner><link_time>5</link_time></banner><link_time>1</link_time>"
       "<object_component_list><object_component id='a'/><x><object_component id='b'/></x>"
       "</object_component_list><logical_group_list/></link_info><link_info/>",
       "1 -1 v1 a=i"},
      {"the version reads as a stream reads an int, else 1",
       "<link_info><version>7</version><version>8</version><link_time>1</link_time>"
       "<object_component_list/><logical_group_list/></link_info>",
       "1 -1 v7"},
      {"a closing tag's name is not checked",
       link_file("3</x><link_errors>2", "<object_component_list/>", no_groups), "3 2 v1"},
      {"a declaration, doctype, instruction and comment around the element",
       "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE l [<!x [y]>]><?p?><!-- c -->" +
           link_file("1", "<object_component_list/>", no_groups),
       "1 -1 v1"},
      {"a bad reference in a left-out attribute empties the file",
       link_file("1", one_component, no_groups) + "<x y='&#x110000;'/>", "0 -1 v-1"},
      {"a bad reference in left-out text empties the file",
       link_file("1", one_component, "<logical_group_list><x>&#12</x></logical_group_list>"),
       "0 -1 v-1"},
      {"an unterminated comment empties the file", link_file("1", one_component, "<!-- "),
       "0 -1 v-1"},
      {"a closing tag without '>' empties the file", link_file("1</link_time", "", ""),
       "0 -1 v-1"},
      {"text at the top level empties the file", link_file("1", one_component, no_groups) + "x",
       "0 -1 v-1"},
      {"a comment alone is a document without link_info", "<!-- c -->",
       "No such node (link_info.link_time)"},
      {"a group without size", link_file("1", one_component,
                                         "<logical_group_list><logical_group id='g'><name/>"
                                         "</logical_group></logical_group_list>"),
       "No such node (size)"},
      {"a group without contents", link_file("1", one_component,
                                             "<logical_group_list><logical_group id='g'>"
                                             "<size/><name/></logical_group>"
                                             "</logical_group_list>"),
       "No such node (contents)"},
      {"a reference without idref",
       link_file("1", one_component,
                 "<logical_group_list><logical_group id='g'><size/><name/><contents>"
                 "<object_component_ref/></contents></logical_group></logical_group_list>"),
       "No such node (<xmlattr>.idref)"},
      {"a component without id, before a missing group list",
       link_file("1", "<object_component_list><object_component x='a'/></object_component_list>",
                 ""),
       "No such node (<xmlattr>.id)"},
      {"no group list", link_file("1", one_component, ""),
       "No such node (link_info.logical_group_list)"},
  };
  TempDir dir;
  const std::string path = dir.file("link.xml");
  for (const auto& c : cases) {
    write_file(path, c.xml);
    EXPECT_EQ(summary(path.c_str()), c.expected) << c.what;
  }
}

// The nesting bound holds in left-out parts too; a self-closed element at the
// bound opens no level.
TEST(LinkFile, NestingIsBoundedWhereverItIs) {
  const auto nested = [](int levels, const char* innermost) {
    std::string xml = link_file("1", one_component, no_groups) + "<x>";
    for (int level = 1; level < levels; ++level)
      xml += "<a>";
    xml += innermost;
    for (int level = 1; level < levels; ++level)
      xml += "</a>";
    return xml + "</x>";
  };
  TempDir dir;
  const std::string path = dir.file("link.xml");
  const struct {
    int levels;
    const char* innermost;
    bool read;
  } cases[] = {
      {max_xml_depth, "<b/>", true},
      {max_xml_depth, "<b></b>", false},
      {max_xml_depth + 1, "", false},
  };
  for (const auto& c : cases) {
    write_file(path, nested(c.levels, c.innermost));
    EXPECT_EQ(summary(path.c_str()) == "1 -1 v1 a=i", c.read) << c.levels << c.innermost;
  }
}

}  // namespace
