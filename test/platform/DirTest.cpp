#include "platform/mox/Dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/mox/MoxType.h"
#include "test/support/Refusal.h"

namespace Mox {
namespace {

using Test::refusal;

class Plain : public Entity {
 public:
  using Entity::Entity;
  void change() { changeCountInc(); }
  void lookUp() const { lookupCountInc(); }
};

class DirTest : public ::testing::Test {
 protected:
  ~DirTest() override {
    for (char const* name : {"slice", "a", "leaf"}) root()->entityDel(name);
  }

  static Ptr<Plain> plain(char const* name) { return Ptr<Plain>(new Plain(name)); }
};

TEST_F(DirTest, EntityCountsChangesAndLookups) {
  Ptr<Plain> const entity = plain("config");
  EXPECT_EQ(entity->name(), Name("config"));
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(entity->changeCount(), 0U);
  EXPECT_EQ(entity->lookupCount(), 0U);
  entity->change();
  entity->change();
  entity->lookUp();
  EXPECT_EQ(entity->changeCount(), 2U);
  EXPECT_EQ(entity->lookupCount(), 1U);
}

TEST_F(DirTest, FullNameIsThePathFromTheRoot) {
  Ptr<Plain> const entity = plain("config");
  EXPECT_EQ(entity->fullName(), "config");
  Ptr<Dir> const slice(new Dir("slice"));
  slice->entityIs(entity);
  EXPECT_EQ(entity->fullName(), "slice/config");
  root()->entityIs(slice);
  EXPECT_EQ(entity->fullName(), "/slice/config");
  EXPECT_EQ(slice->fullName(), "/slice");
  EXPECT_EQ(root()->fullName(), "/");
}

TEST_F(DirTest, HoldsItsMembersUntilTheyAreRemoved) {
  Ptr<Dir> const dir(new Dir("dir"));
  Ptr<Plain> const entity = plain("a");
  dir->entityIs(entity);
  dir->entityIs(plain("b"));
  EXPECT_EQ(dir->entities(), 2U);
  EXPECT_EQ(entity->parent(), dir.ptr());
  EXPECT_EQ(entity->references(), 2U);
  EXPECT_EQ(dir->entity("a"), entity);
  EXPECT_EQ(dir->entity("c"), nullptr);

  EXPECT_EQ(dir->entityDel("c"), nullptr);
  EXPECT_EQ(dir->entityDel("a"), entity);
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(entity->references(), 1U);
  EXPECT_EQ(dir->entity("a"), nullptr);
  EXPECT_EQ(dir->entities(), 1U);
}

TEST_F(DirTest, MembersThatOutliveItHaveNoParent) {
  Ptr<Plain> const entity = plain("a");
  Ptr<Dir>(new Dir("dir"))->entityIs(entity);
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(entity->fullName(), "a");
}

TEST_F(DirTest, RefusesMembersThatCannotBe) {
  Ptr<Dir> const dir = dirAt("/slice");
  Ptr<Plain> const config = plain("config");
  dir->entityIs(config);
  EXPECT_EQ(refusal([&] { dir->entityIs(plain("")); }), "'' is no name for a directory's member");
  EXPECT_EQ(refusal([&] { dir->entityIs(plain("a/b")); }),
            "'a/b' is no name for a directory's member");
  EXPECT_EQ(refusal([&] { root()->entityIs(config); }),
            "'/slice/config' is in a directory already");
  EXPECT_EQ(refusal([&] { dir->entityIs(plain("config")); }), "'/slice/config' exists already");
  EXPECT_EQ(refusal([&] { root()->entityIs(plain("slice")); }), "'/slice' exists already");
  EXPECT_EQ(dir->entities(), 1U);
  EXPECT_EQ(root()->entities(), 1U);
}

TEST_F(DirTest, RefusesToBeInItself) {
  Ptr<Dir> const top(new Dir("top"));
  Ptr<Dir> const below(new Dir("below"));
  top->entityIs(below);
  EXPECT_EQ(refusal([&] { top->entityIs(top); }), "'top' would be in itself");
  EXPECT_EQ(refusal([&] { below->entityIs(top); }), "'top/below' would be in itself");
}

TEST_F(DirTest, FindsEntitiesByPath) {
  Ptr<Plain> const config = plain("config");
  dirAt("/slice/3")->entityIs(config);
  EXPECT_EQ(entityAt("/slice/3/config"), config);
  EXPECT_EQ(entityAt("/slice"), dirAt("/slice"));
  EXPECT_EQ(entityAt("/"), root());
  for (char const* nowhere : {"", "slice", "slice/3", "//slice", "/slice/", "/slice//3", "//",
                              "/slice/4", "/slice/3/config/x", "/Slice"}) {
    EXPECT_EQ(entityAt(nowhere), nullptr) << nowhere;
  }
}

TEST_F(DirTest, MakesTheDirectoriesThatAPathLacks) {
  EXPECT_EQ(dirAt("/"), root());
  EXPECT_EQ(dirAt(""), root());
  Ptr<Dir> const made = dirAt("/a/b/c");
  EXPECT_EQ(made->fullName(), "/a/b/c");
  EXPECT_EQ(dirAt("/a/b/c"), made);
  EXPECT_EQ(dirAt("/a/b"), made->parent());
  EXPECT_EQ(made->fwkType()->fullName(), "Mox::Dir");
}

TEST_F(DirTest, RefusesPathsOfNoDirectoryAndMakesNothing) {
  root()->entityIs(plain("leaf"));
  EXPECT_EQ(refusal([] { dirAt("a/b"); }), "'a/b' is no absolute path");
  EXPECT_EQ(refusal([] { dirAt("/a//b"); }), "'/a//b' is no absolute path");
  EXPECT_EQ(refusal([] { dirAt("/a/"); }), "'/a/' is no absolute path");
  EXPECT_EQ(refusal([] { dirAt("/leaf/a"); }), "'/leaf' is no directory");
  EXPECT_EQ(root()->entities(), 1U);
}

}  // namespace
}  // namespace Mox
