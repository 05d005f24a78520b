// The yardstick of the link-file benchmark: reads one XML file into a property
// tree with the flags the tool uses, and nothing else, under the C library's
// allocator.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <cstdio>
#include <locale>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
  boost::property_tree::ptree tree;
  namespace xml_parser = boost::property_tree::xml_parser;
  xml_parser::read_xml(argv[1], tree, xml_parser::trim_whitespace, std::locale());
  return tree.empty() ? 1 : 0;
}
