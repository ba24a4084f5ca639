#include "text/Table.h"

#include <gtest/gtest.h>

namespace Text {
namespace {

Table table() {
  Table table({"port", "mode", "created"});
  table.add({{"et1"}, {"trunk", Mark::good}, {"yes"}});
  table.add({{"\xc3\xa9t10/1"}, {"-", Mark::bad}, {""}});
  return table;
}

TEST(Table, HasItsCellsBelowEachOther) {
  EXPECT_EQ(table().text(false),
            "port    mode   created\n"
            "et1     trunk  yes\n"
            "\xc3\xa9t10/1  -\n");
}

TEST(Table, ColoursHeadingsAndMarks) {
  EXPECT_EQ(table().text(true),
            "\033[1mport  \033[0m  \033[1mmode \033[0m  \033[1mcreated\033[0m\n"
            "et1     \033[32mtrunk\033[0m  yes\n"
            "\xc3\xa9t10/1  \033[31m-    \033[0m\n");
}

TEST(Table, LetsAWideCellStandOut) {
  Table table({"a", "b"});
  table.add({{std::string(81, 'x')}, {"1"}});
  EXPECT_EQ(table.text(false), "a" + std::string(81, ' ') + "b\n" + std::string(81, 'x') + "  1\n");
}

}  // namespace
}  // namespace Text
