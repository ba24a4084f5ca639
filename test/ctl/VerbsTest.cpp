#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <nlohmann/json.hpp>

#include "test/ctl/KestctlRun.h"

namespace Kest::Ctl {
namespace {

/// One verb against one result of the agent, for people and for programs.
struct Case {
  std::vector<std::string> arguments;
  std::string request;
  std::string result;
  std::string shown;
  int exit = 0;
};

class Kestctl : public KestctlRun {
 protected:
  void expect(Case const& expected) {
    std::string const name = testing::PrintToString(expected.arguments);
    Outcome const outcome = run(expected.arguments, {ok(expected.result)});
    EXPECT_EQ(outcome.requests, std::vector<std::string>{expected.request}) << name;
    EXPECT_EQ(outcome.out, expected.shown) << name;
    EXPECT_EQ(outcome.errors, "") << name;
    EXPECT_EQ(outcome.exit, expected.exit) << name;
    std::vector<std::string> arguments = expected.arguments;
    arguments.insert(arguments.begin() + 1, "--json");
    Outcome const programs = run(arguments, {ok(expected.result)});
    EXPECT_EQ(programs.requests, outcome.requests) << name;
    EXPECT_EQ(programs.out, nlohmann::ordered_json::parse(expected.result).dump(2) + "\n") << name;
    EXPECT_EQ(programs.errors, "") << name;
    EXPECT_EQ(programs.exit, expected.exit) << name;
  }

  std::string contentOf(std::string const& name) const {
    std::ifstream file(directory + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(Kestctl, ShowsTypesAndTheirAttributes) {
  expect({{"types"},
          R"({"verb":"types"})",
          R"([{"name":"bool","kind":"value"},{"name":"Mox::Dir","kind":"entity"}])",
          "type      kind\nbool      value\nMox::Dir  entity\n"});
  expect({{"describe", "S"},
          R"({"verb":"describe","type":"S"})",
          R"({"name":"N::S","kind":"entity","constructor":[{"name":"name","type":"Mox::Name"}],)"
          R"("attributes":[{"name":"port","id":258,"type":"U16","class":"collection",)"
          R"("flags":["visible","writable"],"key":{"name":"ifName","type":"Mox::String"}},)"
          R"({"name":"go","id":7,"type":"Mox::VoidPtr","class":"handler","flags":["visible"],)"
          R"("arguments":[{"name":"on","type":"bool"}]}]})",
          "N::S: entity\n"
          "made from (name: Mox::Name)\n"
          "attribute  id   class       type          key                  arguments   flags\n"
          "port       258  collection  U16           ifName: Mox::String              visible "
          "writable\n"
          "go         7    handler     Mox::VoidPtr                       (on: bool)  visible\n"});
}

TEST_F(Kestctl, ReadsAndChangesValues) {
  expect({{"get", "config/sliceId"},
          R"({"verb":"get","path":"config/sliceId"})",
          R"({"path":"config/sliceId","type":"Mox::String","value":"a\u001b[31m\nb"})",
          "a\\x1b[31m\\x0ab\n"});
  expect({{"get", "status", "--text"},
          R"({"verb":"get","path":"status","form":"text"})",
          R"({"path":"status","type":"T","value":{"name":"s","device":{"fap0":{"up":true}},)"
          R"("ports":{}}})",
          "name   s\ndevice\n  fap0\n    up  true\nports  {}\n"});
  expect({{"set", "config/nativeVlan/et1", "20"},
          R"({"verb":"set","path":"config/nativeVlan/et1","text":"20"})",
          R"({"path":"config/nativeVlan/et1","type":"U16","changed":true,"value":20})",
          "config/nativeVlan/et1: 20\n"});
  expect({{"set", "p", "{}", "--replace"},
          R"({"verb":"set","path":"p","text":"{}","replace":true})",
          R"({"path":"p","type":"T","changed":true,"value":{}})",
          "p: {}\n"});
  expect({{"set", "p", ""},
          R"({"verb":"set","path":"p","text":""})",
          R"({"path":"p","type":"Mox::String","changed":false,"value":""})",
          "p:  (unchanged)\n"});
  expect({{"del", "config/nativeVlan/et1"},
          R"({"verb":"del","path":"config/nativeVlan/et1"})",
          R"({"path":"config/nativeVlan/et1","type":"U16","removed":true,"value":20})",
          "config/nativeVlan/et1: removed, was 20\n"});
  expect({{"del", "config/nativeVlan/et1"},
          R"({"verb":"del","path":"config/nativeVlan/et1"})",
          R"({"path":"config/nativeVlan/et1","type":"U16","removed":false,"value":null})",
          "config/nativeVlan/et1: was not there\n"});
  expect({{"notify", "p"},
          R"({"verb":"notify","path":"p"})",
          R"({"path":"p"})",
          "p: announced again\n"});
  expect({{"call", "handleDevice", "fap0"},
          R"({"verb":"call","handler":"handleDevice","args":["fap0"]})",
          R"({"handler":"sm/handleDevice"})",
          "sm/handleDevice: done\n"});
  expect({{"call", "h", "--", "[a,b]", "{}", "", "--json", "-1"},
          R"({"verb":"call","handler":"h","args":["[a,b]","{}","","--json","-1"]})",
          R"({"handler":"h"})",
          "h: done\n"});
  expect({{"set", "p", "-5"},
          R"({"verb":"set","path":"p","text":"-5"})",
          R"({"path":"p","type":"int","changed":true,"value":-5})",
          "p: -5\n"});
  expect({{"mode"},
          R"({"verb":"mode"})",
          R"({"mode":"smModeInitial","number":0})",
          "smModeInitial (0)\n"});
  expect({{"mode", "polling"},
          R"({"verb":"mode","mode":"polling"})",
          R"({"mode":"smModePolling","number":2})",
          "smModePolling (2)\n"});
  expect({{"trace"}, R"({"verb":"trace"})", R"({"setting":""})", "no facility is traced\n"});
  expect({{"trace", "K/0-2"},
          R"({"verb":"trace","setting":"K/0-2"})",
          R"({"setting":"K/012"})",
          "K/012\n"});
}

TEST_F(Kestctl, VerifyFailsWhenSidesDiffer) {
  expect({{"verify"}, R"({"verb":"verify"})", R"({"differences":[],"clean":true})", "clean\n"});
  expect({{"verify"},
          R"({"verb":"verify"})",
          R"({"clean":false,"differences":[{"subject":"device a","what":"state","message":"M1"},)"
          R"({"subject":"port b","what":"created","message":"M2"}]})",
          "M1\nM2\n2 differences\n",
          1});
}

TEST_F(Kestctl, VerifySaysWhatTheDriverCouldNotTell) {
  std::string const left = R"("notCompared":["interfaces","device parameters"]})";
  expect({{"verify"},
          R"({"verb":"verify"})",
          R"({"differences":[],"clean":true,)" + left,
          "clean; this driver does not tell of interfaces, device parameters\n"});
  expect({{"verify"},
          R"({"verb":"verify"})",
          R"({"differences":[{"message":"M"}],"clean":false,)" + left,
          "M\n1 difference; this driver does not tell of interfaces, device parameters\n",
          1});
}

/// Members come in the order of the reply, however many there are.
TEST_F(Kestctl, ShowsACollectionOfManyEntriesInItsOrder) {
  std::string members, shown;
  for (int port = 99; port >= 10; --port) {
    std::string const name = "et" + std::to_string(port);
    members += "\"" + name + "\":" + std::to_string(port) + ",";
    shown += name + "  " + std::to_string(port) + "\n";
  }
  shown += "et9   4096\n";
  expect({{"get", "c"},
          R"({"verb":"get","path":"c"})",
          R"({"path":"c","type":"U16","value":{)" + members + R"("et9":4096}})",
          shown});
}

TEST_F(Kestctl, ShowSaysOnceWhatAllSidesSay) {
  expect(
      {{"show"},
       R"({"verb":"show"})",
       R"({"devices":[{"name":"fap0","config":{"devName":"fap0","pciHam":"/pci/a",)"
       R"("fapType":"fapTypeArad","deviceState":"deviceStateUp"},"status":{"devName":"fap0",)"
       R"("registered":true,"deviceState":"deviceStateUp"},"driver":{"up":false}},)"
       R"({"name":"fap1","config":null,"status":null,"driver":null}],)"
       R"("ports":[{"name":"et1","config":{"ifName":"et1","destId":7,"devName":"fap0",)"
       R"("macAddr":"00:00:00:00:00:01","nativeVlan":10,"switchportMode":"switchportModeTrunk"},)"
       R"("status":{"ifName":"et1","created":true,"nativeVlan":10,)"
       R"("switchportMode":"switchportModeTrunk"},"driver":{"nativeVlan":10,"mode":false}},)"
       R"({"name":"et2","config":{"ifName":"et2","destId":8,"devName":"","macAddr":"m",)"
       R"("nativeVlan":20},"status":null,"driver":null}]})",
       "device  handle  chip type  registered  state\n"
       "fap0    /pci/a  arad       yes         up / up / down\n"
       "fap1    -       -          no          -\n"
       "\n"
       "port  device  destination  MAC                created        native VLAN  mode\n"
       "et1   fap0    7            00:00:00:00:00:01  yes            10           trunk\n"
       "et2   -       8            m                  yes / no / no  20 / - / -   -\n"});
  expect(
      {{"show"}, R"({"verb":"show"})", R"({"devices":[],"ports":[]})", "no devices, no ports\n"});
}

TEST_F(Kestctl, SendsSliceFilesAndSaysWhatTheyDo) {
  fileIs("my.slice", "sliceId 'x'\n");
  std::string const content = R"("file":"my.slice","bytes":12})"
                              "\nsliceId 'x'";
  expect({{"diff", "my.slice"},
          R"({"verb":"diff",)" + content,
          R"({"steps":["~ sliceId 'x'"],"unchanged":3})",
          "~ sliceId 'x'\n1 change, 3 unchanged\n",
          1});
  expect({{"diff", "my.slice"},
          R"({"verb":"diff",)" + content,
          R"({"steps":[],"unchanged":4})",
          "0 changes, 4 unchanged\n"});
  expect({{"apply", "my.slice"},
          R"({"verb":"apply",)" + content,
          R"({"announced":2,"unchanged":3,"notUp":[]})",
          "announced 2 changes, 3 unchanged\n"});
  expect({{"apply", "my.slice"},
          R"({"verb":"apply",)" + content,
          R"({"announced":1,"unchanged":0,"notUp":["port et1"]})",
          "announced 1 change, 0 unchanged\nnot up: port et1\n",
          1});
}

/// Whatever it holds: the agent judges it.
TEST_F(Kestctl, SendsSliceFilesOfAnySizeAsTheyAre) {
  std::string const content = "# caf\xe9\n" + std::string(std::size_t{3} << 20, '#') + "x";
  fileIs("my.slice", content);
  Outcome const outcome = run({"diff", "my.slice"}, {ok(R"({"steps":[],"unchanged":0})")});
  EXPECT_EQ(outcome.errors, "");
  ASSERT_EQ(outcome.requests.size(), 1U);
  EXPECT_TRUE(outcome.requests[0] == R"({"verb":"diff","file":"my.slice","bytes":)" +
                                         std::to_string(content.size()) + "}\n" + content);
}

TEST_F(Kestctl, SendsSlicesFromStandardInputInTheirForm) {
  Replies const replies{ok(R"({"steps":[],"unchanged":0})")};
  EXPECT_EQ(run({"diff", "-"}, replies, "sliceId 'x'").requests,
            std::vector<std::string>{
                R"({"verb":"diff","file":"standard input","format":"slice","bytes":11})"
                "\nsliceId 'x'"});
  EXPECT_EQ(run({"diff", "-"}, replies, "\n {}").requests,
            std::vector<std::string>{
                R"({"verb":"diff","file":"standard input","format":"json","bytes":4})"
                "\n\n {}"});
}

TEST_F(Kestctl, ADumpOfAConfigurationThatChangedIsNoFile) {
  fileIs("out", "old");
  Outcome const outcome = run({"dump", "-o", "out"}, {ok(R"({"content":"new","changed":true})")});
  EXPECT_EQ(outcome.errors, "kestctl: the configuration changed while it was written: try again\n");
  EXPECT_EQ(outcome.exit, 1);
  EXPECT_EQ(contentOf("out"), "old");
}

TEST_F(Kestctl, DumpGoesToStandardOutputOrAFile) {
  std::string const result = R"({"content":"sliceId 'a'\n# \u00e9\n"})";
  expect({{"dump"}, R"({"verb":"dump","format":"slice"})", result, "sliceId 'a'\n# \xc3\xa9\n"});
  expect({{"dump", "--format", "json", "-o", "out"},
          R"({"verb":"dump","format":"json"})",
          result,
          ""});
  EXPECT_EQ(contentOf("out"), "sliceId 'a'\n# \xc3\xa9\n");
  Outcome const refused = run({"dump", "-o", "no/such/out"}, {ok(result)});
  EXPECT_EQ(refused.errors, "kestctl: no/such/out cannot be written: No such file or directory\n");
  EXPECT_EQ(refused.exit, 2);
}

TEST_F(Kestctl, ADumpTakesTheFilesPlaceAndLeavesNothingBeside) {
  fileIs("file", "old");
  std::string const file = directory + "/file";
  ASSERT_EQ(chmod(file.c_str(), 0640), 0);
  std::filesystem::create_symlink("file", directory + "/link");
  std::filesystem::create_hard_link(file, directory + "/earlier");
  EXPECT_EQ(run({"dump", "-o", "link"}, {ok(R"({"content":"new"})")}).errors, "");
  EXPECT_EQ(contentOf("file"), "new");
  EXPECT_EQ(contentOf("earlier"), "old");  // whoever has it open reads on
  EXPECT_TRUE(std::filesystem::is_symlink(directory + "/link"));
  struct stat now {};
  ASSERT_EQ(stat(file.c_str(), &now), 0);
  EXPECT_EQ(now.st_mode, mode_t{S_IFREG | 0640});
  std::filesystem::directory_iterator const all(directory);
  EXPECT_EQ(std::distance(begin(all), end(all)), 4);  // and the socket
}

TEST_F(Kestctl, ADumpToADeviceIsWrittenToIt) {
  std::string const fifo = directory + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  int const reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(run({"dump", "-o", "fifo"}, {ok(R"({"content":"new"})")}).errors, "");
  std::array<char, 9> text{};
  EXPECT_EQ(read(reader, text.data(), text.size()), 3);
  EXPECT_STREQ(text.data(), "new");
  close(reader);
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));
}

TEST_F(Kestctl, ColoursAreForTerminalsThatTakeThem) {
  std::string const result =
      R"({"devices":[{"name":"a","config":null,"status":{"registered":true},"driver":null}],)"
      R"("ports":[]})";
  std::string const plain =
      "device  handle  chip type  registered  state\n"
      "a       -       -          no / yes    -\n";
  auto const shown = [&] { return run({"show"}, {ok(result)}).out; };
  EXPECT_EQ(shown(), plain);
  isOnTerminal = true;
  EXPECT_EQ(shown(),
            "\033[1mdevice\033[0m  \033[1mhandle\033[0m  \033[1mchip type\033[0m  "
            "\033[1mregistered\033[0m  \033[1mstate\033[0m\n"
            "a       -       -          \033[31mno / yes  \033[0m  -\n");
  environment = {{"TERM", "dumb"}};
  EXPECT_EQ(shown(), plain);
  environment = {{"TERM", "xterm"}, {"NO_COLOR", "1"}};
  EXPECT_EQ(shown(), plain);
}

TEST_F(Kestctl, SteersTheSimulatedDriver) {
  expect({{"driver", "log"}, R"({"verb":"driver","action":"log"})", R"({"text":"#1\n"})", "#1\n"});
  expect({{"driver", "dump"},
          R"({"verb":"driver","action":"dump"})",
          R"({"text":"a\u001b[31m\nb"})",
          "a\\x1b[31m\nb"});
  expect({{"driver", "state"},
          R"({"verb":"driver","action":"state"})",
          R"({"state":{"a":1}})",
          "{\n  \"a\": 1\n}\n"});
  expect({{"driver", "flip", "fap0"},
          R"({"verb":"driver","action":"flip","device":"fap0"})",
          "{}",
          "fap0: flipped\n"});
  Outcome const outcome = run({"driver", "fault", "-"}, {ok("{}")}, "fail kestDmaIfdel * 5 always");
  EXPECT_EQ(outcome.requests.at(0),
            R"({"verb":"driver","action":"fault","text":"fail kestDmaIfdel * 5 always"})");
  EXPECT_EQ(outcome.out, "faults replaced\n");
}

TEST_F(Kestctl, WatchShowsEventsUntilThereHaveBeenEnough) {
  std::string const events =
      R"({"event":"change","path":"status/deviceState/fap0","type":"T","value":"deviceStateUp"})"
      "\n"
      R"({"event":"lost","count":17})"
      "\n"
      R"({"event":"change","path":"status/nativeVlan/et1","type":"U16","value":null})"
      "\n";
  Outcome const outcome = run({"watch", "--count", "3"}, {ok(R"({"watching":true})") + events});
  EXPECT_EQ(outcome.out,
            "status/deviceState/fap0: deviceStateUp\n(17 changes not shown)\n"
            "status/nativeVlan/et1 removed\n");
  EXPECT_EQ(outcome.exit, 0);
  Outcome const cut = run({"watch", "--json"}, {ok(R"({"watching":true})") + events});
  EXPECT_EQ(cut.out,
            events + R"({"error":{"kind":"no-agent","message":"the agent has ended, or has ended )"
                     R"(the connection: its log or its standard error says why; try again when it )"
                     R"(is running"}})"
                     "\n");
  EXPECT_EQ(cut.exit, 3);
}

TEST_F(Kestctl, WatchEndsWithWhatTheAgentSaysAtItsEnd) {
  std::string const end = R"({"ok":false,"error":{"kind":"busy","message":"go away"}})"
                          "\n";
  Outcome const outcome = run({"watch"}, {ok(R"({"watching":true})") + end});
  EXPECT_EQ(outcome.errors, "kestctl: go away\n");
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.exit, 1);
}

TEST_F(Kestctl, JsonIsTheResultAsItIs) {
  Outcome const outcome =
      run({"get", "sm/mode", "--json"}, {ok(R"({"path":"sm/mode","value":7})")});
  EXPECT_EQ(outcome.out, "{\n  \"path\": \"sm/mode\",\n  \"value\": 7\n}\n");
  Outcome const verify =
      run({"verify", "--json"}, {ok(R"({"clean":false,"differences":[{"message":"M"}]})")});
  EXPECT_EQ(verify.exit, 1);
}

}  // namespace
}  // namespace Kest::Ctl
