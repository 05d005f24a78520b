// The frame shared by the documents: lenient reading, the version and time
// stamp, the numeric format, and rewriting from memory alone.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <boost/property_tree/exceptions.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <string>

namespace {

// The results an iostream set to hex | showbase gives, odd inputs included.
TEST(Convert, ReadsAndWritesAsAHexStreamDoes) {
  const struct {
    const char* text;
    int32_t as_int32;
    uint64_t as_uint64;
  } cases[] = {
      {"0x10", 16, 0x10},
      {"10", 16, 0x10},
      {"0X1F", 31, 0x1f},
      {"-1", -1, ~uint64_t{0}},
      {"+7", 7, 7},
      {"12g3", 18, 0x12},
      {"1.5", 1, 1},
      {"zz", 0, 0},
      {"", 0, 0},
      {" 1", 0, 0},
      {"0x", 0, 0},
      {"-0x", 0, 0},
      {"+-1", 0, 0},
      {"00x5", 0, 0},
      {"0x0x5", 0, 0},
      {"80000000", INT32_MAX, 0x80000000},
      {"-80000001", INT32_MIN, 0xffffffff7fffffff},
      {"10000000000000000", INT32_MAX, ~uint64_t{0}},
      {"-ffffffff", INT32_MIN, 0xffffffff00000001},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(convert<int32_t>(std::string(c.text)), c.as_int32) << c.text;
    EXPECT_EQ(convert<uint64_t>(std::string(c.text)), c.as_uint64) << c.text;
  }
  EXPECT_EQ(convert<std::string>(uint64_t{0}), "0");
  EXPECT_EQ(convert<std::string>(uint64_t{0xABCDEF}), "0xabcdef");
  EXPECT_EQ(convert<std::string>(int32_t{-2}), "0xfffffffe");
}

// Nesting up to the bound is read, deeper is not; the nesting is counted as
// the parser nests, past what comments, sections and attribute values hold.
// Endless devices and directories are empty at once.
TEST(ReadXmlFile, NestingAndEndlessInputAreBounded) {
  TempDir dir;
  const std::string path = dir.file("nested.xml");
  const auto nested = [](int depth) {
    std::string xml;
    for (int level = 0; level < depth; ++level)
      xml += "<a x=\"/>\" y='>'><!-- <b> --><![CDATA[<c>]]><?p <d> ?><!x <e>><f/>text";
    for (int level = 0; level < depth; ++level)
      xml += "</a >";
    return xml;
  };
  write_file(path, nested(max_xml_depth));
  EXPECT_FALSE(read_xml_file(path.c_str()).empty());
  write_file(path, nested(max_xml_depth + 1));
  EXPECT_TRUE(read_xml_file(path.c_str()).empty());
  EXPECT_TRUE(read_xml_file("/dev/zero").empty());
  EXPECT_TRUE(read_xml_file(dir.path().c_str()).empty());
}

class DocumentFrame : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string path = dir.file("advice.xml");
  const std::string no_link = dir.file("no_link.xml");
  LINK_DATA link{no_link.c_str()};

  void write_advice(const std::string& version, const std::string& timestamp,
                    const std::string& rest = "") {
    write_file(path, "<body><version>" + version + "</version><timestamp>" + timestamp +
                         "</timestamp>" + rest + "</body>");
  }

  ptree written() const {
    ptree tree;
    boost::property_tree::read_xml(path, tree);
    return tree;
  }
};

TEST_F(DocumentFrame, UnreadableFilesAreEmptyDocumentsAndGetReplaced) {
  for (const char* content : {"", "<body><version>1</version>", "<body><timestamp>1</timestamp"}) {
    write_file(path, content);
    ADVICE advice(path.c_str(), link);
    EXPECT_EQ(advice.get_file_version(), -1) << content;
    EXPECT_EQ(advice.get_timestamp(), 0u) << content;
    advice.output();
    EXPECT_EQ(written().get<int>("body.version"), 1) << content;
  }
  EXPECT_EQ(ADVICE(dir.path().c_str(), link).get_file_version(), -1);
}

TEST_F(DocumentFrame, AWellFormedFileWithAnotherRootIsFatalAndLeftAlone) {
  const std::string content = "<advice_doc><version>1</version></advice_doc>";
  write_file(path, content);
  try {
    ADVICE advice(path.c_str(), link);
    FAIL() << "no exception";
  } catch (const boost::property_tree::ptree_bad_path& e) {
    EXPECT_EQ(std::string(e.what()), "No such node (body.timestamp)");
  }
  EXPECT_EQ(read_file(path), content);
}

TEST_F(DocumentFrame, AnyVersionIsReadAndVersion1IsWritten) {
  write_advice("7", "0x10");
  ADVICE seven(path.c_str(), link);
  EXPECT_EQ(seven.get_file_version(), 7);
  EXPECT_EQ(seven.get_timestamp(), 16u);
  seven.output();
  EXPECT_EQ(written().get<std::string>("body.version"), "1");

  write_advice("1.5", "10");
  ADVICE odd(path.c_str(), link);
  EXPECT_EQ(odd.get_file_version(), -1);
  EXPECT_EQ(odd.get_timestamp(), 16u);
  write_advice("1", "yesterday");
  EXPECT_EQ(ADVICE(path.c_str(), link).get_timestamp(), 0u);
}

TEST_F(DocumentFrame, DocumentsWrittenInOneRunBearOneTimeStamp) {
  const std::string second = dir.file("second.xml");
  ADVICE(path.c_str(), link).output();
  ADVICE(second.c_str(), link).output();

  const std::string stamp = written().get<std::string>("body.timestamp");
  EXPECT_EQ(stamp, convert<std::string>(new_timestamp()));
  EXPECT_EQ(ADVICE(second.c_str(), link).get_timestamp(), convert<uint64_t>(stamp));
  EXPECT_LE(new_timestamp(), static_cast<uint64_t>(std::time(nullptr)));
}

TEST_F(DocumentFrame, OutputStartsWithVersionAndTimeStampAndDropsUnknownContent) {
  write_advice("1", "0x5",
               "<unknown>x</unknown><advice diag_code=\"27010\" advice_type=\"build_run\" "
               "option=\"\" value=\"\" extra=\"x\">text</advice>");
  ADVICE(path.c_str(), link).output();
  const ptree tree = written();
  const ptree& body = tree.get_child("body");
  auto child = body.begin();
  EXPECT_EQ((child++)->first, "version");
  EXPECT_EQ((child++)->first, "timestamp");
  EXPECT_FALSE(body.get_child_optional("unknown"));
  EXPECT_FALSE(body.get_child_optional("advice.<xmlattr>.extra"));
  EXPECT_EQ(body.get<std::string>("advice"), "text");
}

TEST_F(DocumentFrame, AnOutputFileThatCannotBeWrittenThrows) {
  const std::string nowhere = dir.file("no_such_dir/advice.xml");
  EXPECT_THROW(ADVICE(nowhere.c_str(), link).output(), boost::property_tree::xml_parser_error);
}

}  // namespace
