// Reading the linker's link information: the link time, the error count and
// the code size summed over the initialized non-debug groups.
#include "ADVICE_PERF/link_data.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <boost/property_tree/exceptions.hpp>

#include <string>

namespace {

class LinkData : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string path = dir.file("link.xml");

  // A link file with the given head elements, components and groups.
  LINK_DATA read_link(const std::string& head, const std::string& components,
                      const std::string& groups) {
    write_file(path, "<link_info>" + head + "<object_component_list>" + components +
                         "</object_component_list><logical_group_list>" + groups +
                         "</logical_group_list></link_info>");
    return LINK_DATA(path.c_str());
  }

  uint32_t code_size(const std::string& components, const std::string& groups) {
    return read_link("<link_time>1</link_time>", components, groups).get_code_size();
  }
};

std::string component(const std::string& id, const std::string& uninitialized = "") {
  std::string xml = "<object_component id=\"" + id + "\">";
  if (!uninitialized.empty()) xml += "<uninitialized>" + uninitialized + "</uninitialized>";
  return xml + "</object_component>";
}

std::string group(const std::string& id, const std::string& size, const std::string& name,
                  std::initializer_list<const char*> refs) {
  std::string xml = "<logical_group id=\"" + id + "\"><size>" + size + "</size><name>" + name +
                    "</name><contents>";
  for (const char* ref : refs)
    xml += "<object_component_ref idref=\"" + std::string(ref) + "\"/>";
  return xml + "</contents></logical_group>";
}

TEST_F(LinkData, AMissingOrBrokenFileIsAnUnknownLink) {
  for (const char* content : {"", "<link_info><link_time>5</link_time>"}) {
    write_file(path, content);
    LINK_DATA link(path.c_str());
    EXPECT_EQ(link.get_link_time(), 0u);
    EXPECT_EQ(link.get_link_errors(), -1);
    EXPECT_EQ(link.get_code_size(), 0u);
  }
  const std::string none = dir.file("none.xml");
  EXPECT_EQ(LINK_DATA(none.c_str()).get_link_errors(), -1);
}

TEST_F(LinkData, LinkTimeAndErrorCountAreHexadecimal) {
  const LINK_DATA link = read_link(
      "<version>3</version><link_time>0x10</link_time><link_errors>0x0</link_errors>", "", "");
  EXPECT_EQ(link.get_link_time(), 16u);
  EXPECT_EQ(link.get_link_errors(), 0);
  EXPECT_EQ(link.get_file_version(), 3);
  EXPECT_EQ(link.get_code_size(), 0u);

  const LINK_DATA unprefixed = read_link("<link_time>10</link_time>", "", "");
  EXPECT_EQ(unprefixed.get_link_time(), 16u);
  EXPECT_EQ(unprefixed.get_link_errors(), -1);
  EXPECT_EQ(unprefixed.get_file_version(), 1);
}

TEST_F(LinkData, CodeSizeSumsInitializedNonDebugGroups) {
  const std::string components = component("a") + component("b", "true") + component("c", "0") +
                                 component("d", "1") + component("e", "maybe") +
                                 "<other id=\"b\"/>";
  EXPECT_EQ(code_size(components, group("g1", "0x100", ".text", {"a"}) +         // counts
                                      group("g2", "100", ".data", {"c", "e"}) +  // counts
                                      group("g3", "0x1000", ".bss", {"b"}) +
                                      group("g4", "0x1000", ".sysmem", {"e", "d"}) +
                                      group("g5", "0x1000", ".debug_info", {"a"}) +
                                      group("g6", "0x1000", ".debug", {"c"}) +
                                      group("g7", "0x8", ".debu", {"c"}) +  // counts
                                      group("g8", "0x1000", ".empty", {})),
            0x100u + 0x100u + 0x8u);
}

TEST_F(LinkData, TheSmallestComponentIdStandsForItsGroup) {
  const std::string components =
      component("z_init") + component("a_uninit", "true") + component("m_uninit", "true");
  // The uninitialized component sorts first although it stands last.
  EXPECT_EQ(code_size(components, group("g", "0x40", ".data", {"z_init", "a_uninit"})), 0u);
  // Here the initialized one sorts first.
  EXPECT_EQ(code_size(components + component("b_init"),
                      group("g", "0x40", ".data", {"m_uninit", "b_init"})),
            0x40u);
}

TEST_F(LinkData, TheFirstOfTwoEqualIdsStays) {
  EXPECT_EQ(code_size(component("a") + component("a", "true"),
                      group("g", "0x10", ".text", {"a"}) + group("g", "0x20", ".text", {"a"})),
            0x10u);
}

TEST_F(LinkData, SizesAreSignedAndTheSumWrapsAt32Bits) {
  const std::string text = group("g1", "0x7fffffff", ".text", {"a"});
  EXPECT_EQ(code_size(component("a"), text + group("g2", "0x7fffffff", ".text", {"a"}) +
                                          group("g3", "3", ".text", {"a"})),
            1u);
  // A size beyond the signed range reads as the largest signed value.
  EXPECT_EQ(code_size(component("a"), group("g", "0xffffffff", ".text", {"a"})), 0x7fffffffu);
}

TEST_F(LinkData, MissingRequiredPartsAreFatal) {
  using boost::property_tree::ptree_bad_path;
  write_file(path, "<link_info><object_component_list/><logical_group_list/></link_info>");
  EXPECT_THROW(LINK_DATA(path.c_str()), ptree_bad_path);
  write_file(path, "<link_info><link_time>1</link_time><logical_group_list/></link_info>");
  EXPECT_THROW(LINK_DATA(path.c_str()), ptree_bad_path);
  const char* head = "<link_time>1</link_time>";
  EXPECT_THROW(read_link(head, "<object_component/>", ""), ptree_bad_path);
  EXPECT_THROW(read_link(head, component("a"),
                         "<logical_group id=\"g\"><size>1</size><contents/></logical_group>"),
               ptree_bad_path);
  EXPECT_THROW(read_link(head, component("a"),
                         "<logical_group id=\"g\"><size>1</size><name>n</name><contents>"
                         "<object_component_ref/></contents></logical_group>"),
               ptree_bad_path);
}

}  // namespace
