#include "tests/unit/structure_test.h"

#include <stdlib.h>

#include <fstream>
#include <sstream>

std::string ExpectedStructureText(const std::string &name) {
  std::ifstream in(std::string(WZ_UNIT_EXPECTED_DIR) + "/" + name, std::ios::binary);
  EXPECT_TRUE(in.good()) << "no expected file " << name;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string UnknownBanner(const std::string &name, const std::string &hexValue) {
  return "|**********************************\n"
         "|* Unknown : " +
         name + " 0x" + hexValue +
         "\n"
         "|**********************************\n";
}

bool BlessStructureText(const std::string &text, const std::string &name) {
  if (getenv("WZ_BLESS_STRUCTURES") == nullptr) {
    return false;
  }
  std::ofstream out(std::string(WZ_UNIT_EXPECTED_DIR) + "/" + name, std::ios::binary);
  out << text;
  return true;
}
