#include <nlohmann/json.hpp>

#include "agent/access/Collections.h"
#include "agent/slice/SliceForm.h"
#include "platform/mox/Dir.h"
#include "test/agent/support/ServedAgent.h"
#include "text/FileError.h"

namespace Kest::Agent {
namespace {

/// Slice files that come and go in pieces.
class SliceVerbs : public ServedAgent {
 protected:
  static constexpr int many = 3000;

  SliceVerbs() {
    for (int port = 0; port < many; ++port) config->nativeVlanIs(Mox::format("et5/%d", port), 1);
  }

  std::unique_ptr<Upload> upload(std::string const& request) {
    Answer answer = verbs.carryOut(readRequest(request), true,
                                   [&](Json const& later) { reply = textOf(later); });
    return std::move(std::get<std::unique_ptr<Upload>>(answer));
  }

  std::unique_ptr<LongResult> longResult(std::string const& request) {
    Answer answer = verbs.carryOut(readRequest(request), true, {});
    return std::move(std::get<std::unique_ptr<LongResult>>(answer));
  }

  std::size_t piecesOfDiff(std::string const& file, std::string const& content) {
    Json const request{{"verb", "diff"}, {"file", file}, {"content", content}};
    auto const diff = longResult(request.dump());
    std::string steps;
    std::size_t pieces = 1;
    while (diff->goOn(steps) == LongResult::Progress::more) ++pieces;
    return pieces;
  }

  std::string dump(std::string const& format) {
    std::string const request = R"({"verb":"dump","format":")" + format + "\"}";
    return Json::parse(ask(request)).at("content").get<std::string>();
  }

  std::string reply;  // that came later
};

TEST_F(SliceVerbs, DiffTakesWhatDumpWritesAsBytesAfterTheRequest) {
  for (std::string const format : {"slice", "json"}) {
    std::string const content = dump(format);
    Json const request{{"verb", "diff"}, {"file", "x." + format}, {"bytes", content.size()}};
    EXPECT_EQ(ask(request.dump(), false, content), R"({"steps":[],"unchanged":3006})");
  }
}

TEST_F(SliceVerbs, TheFormIsThatOfTheNameUnlessItIsGiven) {
  EXPECT_EQ(ask(R"({"verb":"diff","file":"-","format":"json","bytes":1})", false, dump("json")),
            R"({"steps":[],"unchanged":3006})");
  EXPECT_EQ(
      ask(R"({"verb":"diff","file":"x.json","format":"slice","bytes":1})", false, dump("slice")),
      R"({"steps":[],"unchanged":3006})");
}

TEST_F(SliceVerbs, BytesAreReadAsTheyCome) {
  auto const diff = upload(R"({"verb":"diff","file":"x.slice","bytes":999})");
  diff->take("sliceId 'a'\nnative");
  diff->take("Vlan 'et1' 1\nbog");
  try {
    diff->take("us\n");
    FAIL() << "not refused";
  } catch (Text::FileError const& refused) {
    EXPECT_EQ(std::string(refused.what()).substr(0, 14), "x.slice:3:1: e");
  }
}

TEST_F(SliceVerbs, ApplyIsBusyWhenAnotherSliceCameFirst) {
  auto const upload = this->upload(R"({"verb":"apply","file":"x.slice","bytes":0})");
  Answer const answer = upload->end();
  applying = true;
  std::string text;
  auto const& work = std::get<std::unique_ptr<LongResult>>(answer);
  EXPECT_THROW(while (work->goOn(text) == LongResult::Progress::more){}, ControlError);
  EXPECT_EQ(reply, "");
}

/// A client that sends a file without ever ending it.
TEST_F(SliceVerbs, AFileThatIsComingIsInNobodysWay) {
  auto const diff = upload(R"({"verb":"diff","file":"x.slice","bytes":99})");
  diff->take("pciHam '/other'\n");
  EXPECT_FALSE(Mox::entityAt("/other"));
  EXPECT_EQ(ask(R"({"verb":"apply","file":"y","content":"pciHam '/other/5'\n"})"),
            R"({"announced":3007,"unchanged":0,"notUp":[]})");
  EXPECT_TRUE(Mox::entityAt("/other/5"));
}

TEST_F(SliceVerbs, NothingIsWrittenOrComparedInOneGo) {
  for (std::string const format : {"slice", "json"}) {
    auto const dump = longResult(R"({"verb":"dump","format":")" + format + "\"}");
    std::string text;
    std::size_t pieces = 1;
    std::size_t largest = 0;
    for (std::size_t before = 0; dump->goOn(text) == LongResult::Progress::more; ++pieces) {
      largest = std::max(largest, text.size() - before);
      before = text.size();
    }
    EXPECT_GT(pieces, 2U * many / 100) << format;
    EXPECT_LT(largest, 10000U) << format;
  }
  EXPECT_GT(piecesOfDiff("x.slice", ""), many / 200);
}

TEST_F(SliceVerbs, NothingIsReadInOneGo) {
  std::string const content = dump("json");
  config->nativeVlanDelAll();  // so that nothing takes long but the file
  std::string const blanks(20 * sliceBytesAtOnce, '\n');
  EXPECT_GT(piecesOfDiff("x.slice", blanks), 20U);
  EXPECT_GT(piecesOfDiff("x.json", blanks + "{}"), 20U);

  auto const reader = sliceReader("x.json", SliceForm::json, SliceEnd::optional);
  reader->take(content);
  int pieces = 1;
  while (reader->goOn()) ++pieces;
  EXPECT_GT(pieces, many / 100);
}

TEST_F(SliceVerbs, DumpSaysWhetherTheConfigurationChangedMeanwhile) {
  EXPECT_EQ(Json::parse(ask(R"({"verb":"dump"})")).at("changed"), false);
  auto const dump = longResult(R"({"verb":"dump"})");
  std::string text;
  ASSERT_EQ(dump->goOn(text), LongResult::Progress::more);
  config->nativeVlanIs("et5/1", 2);
  while (dump->goOn(text) == LongResult::Progress::more) {
  }
  EXPECT_EQ(Json::parse(text).at("changed"), true);
}

/// A reply is JSON, which can hold no other bytes than UTF-8; statements say them with escapes.
TEST_F(SliceVerbs, DumpKeepsBytesThatAreNoUtf8) {
  config->sliceIdIs("Z\xfcrich \xc3\xbc");
  Json const request{{"verb", "diff"}, {"file", "x.slice"}, {"content", dump("slice")}};
  EXPECT_EQ(ask(request.dump()), R"({"steps":[],"unchanged":3006})");
  EXPECT_EQ(
      ask(R"({"verb":"dump","format":"json"})"),
      R"(value: sliceId 'Z\xfcrich \xc3\xbc' holds bytes that are no UTF-8, which JSON cannot )"
      "hold; statements can");
}

}  // namespace
}  // namespace Kest::Agent
