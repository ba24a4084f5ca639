#include "platform/mox/AttributeList.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/mox/GenericValue.h"

namespace Mox {
namespace {

String8 nameOf(unsigned number) {
  return String8("attribute" + std::to_string(number));
}

/// The attributes of those numbers; the odd ones are inherited.
AttributeList listOf(unsigned first, unsigned end) {
  AttributeList list;
  for (unsigned number = first; number < end; ++number) {
    Attribute attribute{nameOf(number), number, TypeOf<bool>::type()};
    if (number % 2 == 1) attribute.inheritedFrom = TypeOf<bool>::type();
    list.add(attribute);
  }
  return list;
}

/// Finds exactly the attributes of those numbers, by either.
void expectFound(AttributeList const& list, unsigned first, unsigned end) {
  ASSERT_EQ(list.all().size(), end - first);
  for (unsigned number = 0; number < end + 10; ++number) {
    bool const isThere = number >= first && number < end;
    Attribute const* const expected = isThere ? &list.all()[number - first] : nullptr;
    EXPECT_EQ(list.find(nameOf(number)), expected) << number;
    EXPECT_EQ(list.find(number), expected) << number;
  }
}

TEST(AttributeListTest, IsEmptyAtFirst) {
  expectFound(AttributeList(), 0, 0);
}

TEST(AttributeListTest, FindsWhatIsThereInListsOfEveryLength) {
  for (unsigned count = 1; count <= 300; count += 1 + count / 8) {
    SCOPED_TRACE(count);
    expectFound(listOf(3, 3 + count), 3, 3 + count);
  }
}

TEST(AttributeListTest, KeepsTheOrder) {
  AttributeList const list = listOf(0, 40);
  for (unsigned number = 0; number < 40; ++number) EXPECT_EQ(list.all()[number].id, number);
}

TEST(AttributeListTest, DropsInheritedOnesOnly) {
  AttributeList list = listOf(5, 8);
  list.inheritedDel(nameOf(6));
  list.inheritedDel(nameOf(9));
  expectFound(list, 5, 8);
  list.inheritedDel(nameOf(5));
  expectFound(list, 6, 8);
  list.inheritedDel(nameOf(7));
  expectFound(list, 6, 7);
  list.add({nameOf(7), 7, TypeOf<bool>::type()});
  expectFound(list, 6, 8);
}

TEST(AttributeListTest, EmptiedHoldsOthersAfterwards) {
  AttributeList list = listOf(1, 2);
  list.inheritedDel(nameOf(1));
  expectFound(list, 0, 0);
  list.add({nameOf(0), 0, TypeOf<bool>::type()});
  expectFound(list, 0, 1);
}

}  // namespace
}  // namespace Mox
