#include <gtest/gtest.h>

#include <string>

#include "platform/fru/PciHam.h"
#include "platform/mox/Dir.h"
#include "platform/mox/Strep.h"
#include "test/support/Refusal.h"

namespace Fru {
namespace {

using Mox::Dir;
using Mox::dirAt;
using Mox::Ptr;
using Mox::String8;
using Test::refusal;

/// An entity that gives no type.
class Untyped : public Mox::Entity {
  using Entity::Entity;
};

class ReferenceTest : public ::testing::Test {
 protected:
  ReferenceTest() {
    dirAt("/pci")->entityIs(ham);
    dirAt("/pci")->entityIs(Ptr<Untyped>(new Untyped("untyped")));
  }
  ~ReferenceTest() override { Mox::root()->entityDel("pci"); }

  static Ptr<PciHam const> read(String8::IteratorConst& it, String8::IteratorConst const& end) {
    return Mox::sequenceToValue(it, end, static_cast<Ptr<PciHam const>*>(nullptr));
  }

  Ptr<PciHam> ham{new PciHam("0000:05:00.0")};
};

TEST_F(ReferenceTest, IsThePathAndTheType) {
  EXPECT_EQ(ham->fwkType(), PciHam::_fwkType());
  EXPECT_EQ(Mox::valueToStrepOfRawPtr(ham.ptr(), PciHam::_fwkType()),
            "EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam')");
  EXPECT_EQ(Mox::valueToStrepOfRawPtr(nullptr, PciHam::_fwkType()), "None");
}

TEST_F(ReferenceTest, EscapesAsStringsDo) {
  Ptr<PciHam> const odd(new PciHam("it's"));
  dirAt("/pci")->entityIs(odd);
  String8 const text = Mox::valueToStrepOfRawPtr(odd.ptr(), PciHam::_fwkType());
  EXPECT_EQ(text, R"(EntityPtr('/pci/it\'s', 'Fru::PciHam'))");
  EXPECT_EQ(Mox::strepToValue<Ptr<PciHam const>>(text), odd);
}

TEST_F(ReferenceTest, ReadsBackWithAnyBlanks) {
  for (char const* text : {"EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam')",
                           "\tEntityPtr ( '/pci/0000:05:00.0' , 'Fru::PciHam' )",
                           "EntityPtr('/pci/0000:05:00.0','Fru::PciHam')"}) {
    EXPECT_EQ(Mox::strepToValue<Ptr<PciHam const>>(text), ham) << text;
  }
  EXPECT_EQ(Mox::strepToValue<Ptr<PciHam const>>(" None"), nullptr);
}

TEST_F(ReferenceTest, RefusesOthersWhereTheyAreWrong) {
  struct {
    char const* text;
    char const* error;
    std::size_t pos;
  } const table[] = {
      {"", "expected EntityPtr or None, found the end of the text", 0},
      {" none", "expected EntityPtr or None, found 'n'", 1},
      {"EntityPtr 5", "expected (, found '5'", 10},
      {"EntityPtr(5", "expected a string in apostrophes, found '5'", 10},
      {"EntityPtr('/pci/0000:05:00.0' 'Fru::PciHam')", "expected ,, found '''", 30},
      {"EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'", "expected ), found the end of the text", 44},
      {"EntityPtr('/pci/0000:06:00.0', 'Fru::PciHam')", "there is no entity at '/pci/0000:06:00.0'",
       10},
      {"EntityPtr('pci', 'Fru::PciHam')", "there is no entity at 'pci'", 10},
      {"EntityPtr('/pci/0000:05:00.0', 'Mox::Dir')",
       "expected a reference to a 'Fru::PciHam', found one to a 'Mox::Dir'", 31},
      {"EntityPtr('/pci', 'Fru::PciHam')", "expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'",
       10},
      {"EntityPtr('/pci/untyped', 'Fru::PciHam')",
       "expected a 'Fru::PciHam' at '/pci/untyped', found a 'untyped entity'", 10},
  };
  for (auto const& row : table) {
    String8 const text(row.text);
    String8::IteratorConst it = text.begin();
    EXPECT_EQ(refusal([&] { read(it, text.end()); }), row.error) << row.text;
    EXPECT_EQ(it.pos(), row.pos) << row.text;
  }
}

}  // namespace
}  // namespace Fru
