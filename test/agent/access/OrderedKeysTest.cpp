#include "agent/access/OrderedKeys.h"

#include <gtest/gtest.h>

#include <string>

#include "agent/slice/SliceFile.h"

namespace Kest::Agent {
namespace {

using Keys = std::vector<Mox::String8>;

/// What is left to take.
Keys taken(OrderedKeys& keys) {
  Keys all;
  while (auto key = keys.take()) all.push_back(*std::move(key));
  return all;
}

TEST(OrderedKeys, HoldsTheKeysOfEverySourceOnceInNaturalOrder) {
  Mox::Ptr<Config> const config(new Config("config"));
  for (char const* ifName : {"et10", "et9", "et3/10"}) config->nativeVlanIs(ifName, 1);
  Mox::Ptr<Status> const status(new Status("status"));
  for (char const* ifName : {"et9", "et3/2", ""}) status->nativeVlanIs(ifName, 1);
  Keys more{"et11", "et10"};
  OrderedKeys keys;
  keys.add<Config::NativeVlans>(config);
  keys.add<Status::NativeVlans>(status);
  keys.add([&]() -> std::optional<Mox::String8> {
    if (more.empty()) return std::nullopt;
    Mox::String8 const key = more.back();
    more.pop_back();
    return key;
  });
  EXPECT_FALSE(keys.gather());
  EXPECT_EQ(taken(keys), (Keys{"", "et3/2", "et3/10", "et9", "et10", "et11"}));
  EXPECT_FALSE(keys.gather());
}

TEST(OrderedKeys, AreGatheredAFewAtATime) {
  Mox::Ptr<Config> const config(new Config("config"));
  Keys expected;
  for (int port = 1; port <= 1000; ++port) {
    expected.push_back(Mox::String8("et" + std::to_string(port)));
    config->nativeVlanIs(expected.back(), 1);
  }
  OrderedKeys keys;
  keys.add<Config::NativeVlans>(config);
  int steps = 1;
  while (keys.gather()) ++steps;
  EXPECT_EQ(steps, 4);
  EXPECT_EQ(taken(keys), expected);
}

TEST(OrderedKeys, FewerLongOnesAreGatheredInAStep) {
  OrderedKeys keys;
  int left = 10;
  keys.add([&]() -> std::optional<Mox::String8> {
    if (left == 0) return std::nullopt;
    return Mox::String8(std::string(10000, 'a') + std::to_string(left--));
  });
  EXPECT_TRUE(keys.gather());
  EXPECT_EQ(left, 8);
}

TEST(OrderedKeys, FollowACollectionThatChangesMeanwhile) {
  Mox::Ptr<Config> config(new Config("config"));
  for (int port = 1; port <= 1000; ++port) {
    config->nativeVlanIs(Mox::String8("et" + std::to_string(port)), 1);
  }
  OrderedKeys keys;
  keys.add<Config::NativeVlans>(config);
  EXPECT_TRUE(keys.gather());
  config->nativeVlanDelAll();
  config->nativeVlanIs("et2000", 1);
  config = nullptr;  // the walk holds it
  while (keys.gather()) {
  }
  // One step's keys, the one at which the walk stood, and the new one if it came after that.
  EXPECT_LE(taken(keys).size(), 258U);
}

}  // namespace
}  // namespace Kest::Agent
