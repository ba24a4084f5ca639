#include <algorithm>

#include "test/agent/support/ServedAgent.h"

namespace Kest::Agent {
namespace {

/// Results about many entries come in pieces, each of which is a little work.
class Pieces : public ServedAgent {
 protected:
  static constexpr std::size_t ports = 1000;

  Pieces() {
    for (std::size_t port = 3; port <= ports; ++port) config->switchPortIs(record(port));
  }

  static Config::SwitchPort record(std::size_t port) {
    Config::SwitchPort record;
    record.ifNameIs(Mox::String8("et3/" + std::to_string(port)));
    record.devNameIs("fap0");
    return record;
  }

  std::unique_ptr<LongResult> start(std::string const& request) {
    return std::get<std::unique_ptr<LongResult>>(
        verbs.carryOut(readRequest(request), true, [](Json const&) {}));
  }

  /// The pieces of the result to a request.
  std::vector<std::string> pieces(std::string const& request) {
    auto const result = start(request);
    std::vector<std::string> all(1);
    while (result->goOn(all.back()) == LongResult::Progress::more) all.emplace_back();
    return all;
  }

  /// The result of a request about all ports: none of its pieces tells of many.
  Json whole(std::string const& request) {
    constexpr std::size_t mostBytes = 20000;
    std::string text;
    std::size_t longest = 0;
    for (std::string const& piece : pieces(request)) {
      longest = std::max(longest, piece.size());
      text += piece;
    }
    EXPECT_GT(text.size(), ports * 12) << request;
    EXPECT_LT(longest, mostBytes) << request;
    return Json::parse(text);
  }
};

TEST_F(Pieces, AreWhatRequestsAboutAllPortsAreAnsweredIn) {
  Json const shown = whole(R"({"verb":"show"})");
  EXPECT_EQ(shown.at("devices").size(), 1U);
  ASSERT_EQ(shown.at("ports").size(), ports);
  EXPECT_EQ(shown.at("ports").at(9).at("driver").at("nativeVlan"), 4096);

  EXPECT_EQ(whole(R"({"verb":"get","path":"status/switchPort"})").at("value").size(), ports);
  Json const got = whole(R"({"verb":"get","path":"config","form":"text"})").at("value");
  EXPECT_EQ(got.at("switchPort").size(), ports);
  EXPECT_EQ(got.at("sliceId"), "'Linecard1'");
  EXPECT_EQ(got.at("nativeVlan").dump(), R"({"et3/1":"10"})");

  Json const completed = whole(R"({"verb":"complete","path":"config/switchPort/et3/"})");
  ASSERT_EQ(completed.size(), ports);
  EXPECT_EQ(completed.at(9), "config/switchPort/et3/10");

  for (std::size_t port = 1; port <= ports; ++port) {
    Hardware::Kest::Sim::simDriver().ifdel(record(port).ifName());
  }
  Json const verified = whole(R"({"verb":"verify"})");
  EXPECT_EQ(verified.at("clean"), false);
  EXPECT_EQ(verified.at("differences").size(), ports);
}

TEST_F(Pieces, SayWhatMemoryTheirKeysTake) {
  for (char const* request : {R"({"verb":"show"})", R"({"verb":"verify"})", R"({"verb":"dump"})",
                              R"({"verb":"complete","path":"config/switchPort/"})",
                              R"({"verb":"diff","file":"a.slice","content":""})"}) {
    auto const result = start(request);
    std::size_t const before = result->held();
    std::size_t most = before;
    std::string text;
    while (result->goOn(text) == LongResult::Progress::more) most = std::max(most, result->held());
    EXPECT_GE(most, before + ports * sizeof(Mox::String8)) << request;
    EXPECT_LE(result->held(), before) << request;
  }
}

TEST_F(Pieces, OfALongTextAreCut) {
  for (std::string const action : {"dump", "state"}) {
    std::string const request = R"({"verb":"driver","action":")" + action + "\"}";
    std::vector<std::string> const all = pieces(request);
    EXPECT_GT(all.size(), 2U);
    for (std::string const& piece : all) EXPECT_LE(piece.size(), 65536U);
  }
  EXPECT_EQ(Json::parse(ask(R"({"verb":"driver","action":"state"})")).at("state"),
            Json::parse(Hardware::Kest::Sim::simDriver().stateText()));
}

TEST_F(Pieces, FollowWhatChangesBetweenThem) {
  for (char const* request :
       {R"({"verb":"show"})", R"({"verb":"verify"})", R"({"verb":"get","path":"config"})",
        R"({"verb":"complete","path":"config/switchPort/"})"}) {
    for (std::size_t port = 1; port <= ports; ++port) config->switchPortIs(record(port));
    auto const result = start(request);
    std::string text;
    for (int steps = 0; steps < 8; ++steps) result->goOn(text);
    config->switchPortDelAll();
    while (result->goOn(text) == LongResult::Progress::more) {
    }
    EXPECT_TRUE(Json::accept(text)) << request;
  }
}

}  // namespace
}  // namespace Kest::Agent
