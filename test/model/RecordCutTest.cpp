#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "test/model/RecordSamples.h"
#include "test/support/Refusal.h"

/// Every beginning of a record's text is refused, with the message that belongs to the place where
/// it was cut. The texts are written here once more, piece by piece, each with what must be said of
/// a text that ends there.
namespace Hardware::Kest::Slice {
namespace {

using Test::refusal;

class CuttableText {
 public:
  std::string const& text() const { return text_; }
  /// What is to be said of the first `length` characters.
  std::string const& message(std::size_t length) const { return messages_[length]; }

  /// `chars` come next; `message` belongs to a text that ends before any of them.
  void add(std::string_view chars, std::string const& message) {
    messages_.insert(messages_.end(), chars.size(), message);
    text_ += chars;
  }

 private:
  std::string text_;
  std::vector<std::string> messages_;
};

std::string const theEnd = "found the end of the text";
std::string const noString = "expected a string in apostrophes, " + theEnd;
std::string const openString = "expected the string's closing apostrophe, " + theEnd;
std::string const halfEscape = "expected one of \\ ' n t r x behind a backslash, " + theEnd;
std::string const halfByte = "expected two hexadecimal digits behind \\x, " + theEnd;

/// What may be said of a value depends on what stands before it and behind it.
struct Place {
  std::string prefix;  // "FIELD: " for a field's value, nothing for a field's name
};

void addToken(CuttableText& out, std::string const& token, Place const& at = {}) {
  std::string named = token;
  while (named.starts_with(' ')) named.erase(0, 1);
  out.add(token, at.prefix + "expected " + named + ", " + theEnd);
}

void addString(CuttableText& out, std::string_view printed, Place const& at,
               std::string const& none) {
  out.add(printed.substr(0, 1), none);
  for (std::size_t i = 1; i < printed.size();) {
    out.add(printed.substr(i, 1), at.prefix + openString);
    if (printed[i++] != '\\') continue;
    out.add(printed.substr(i, 1), at.prefix + halfEscape);
    if (printed[i++] != 'x') continue;
    out.add(printed.substr(i, 2), at.prefix + halfByte);
    i += 2;
  }
}

/// A word that is known only when it is whole.
void addWord(CuttableText& out, std::string_view word, std::string const& expected) {
  out.add(word.substr(0, 1), expected + ", " + theEnd);
  out.add(word.substr(1), expected + ", found '" + word[0] + "'");
}

void addStringIn(CuttableText& out, std::string_view printed, Place const& at) {
  addString(out, printed, at, at.prefix + noString);
}

void addHandle(CuttableText& out, std::string_view printed, Place const& at) {
  std::string const expected = at.prefix + "expected EntityPtr or None";
  if (printed == "None") {
    addWord(out, printed, expected);
    return;
  }
  std::size_t const comma = printed.rfind(',');
  addWord(out, "EntityPtr", expected);
  addToken(out, "(", at);
  addStringIn(out, printed.substr(10, comma - 10), at);
  addToken(out, ",", at);
  out.add(" ", at.prefix + noString);
  addStringIn(out, "'Fru::PciHam'", at);
  addToken(out, ")", at);
}

template <class Value>
void addValue(CuttableText& out, std::string const& premature, Place const& at,
              Value const& value) {
  using Mox::valueToStrep;
  if constexpr (std::is_same_v<Value, std::uint32_t>) {
    std::string const digits = std::to_string(value);
    out.add(digits.substr(0, 1), at.prefix + "expected a decimal number, " + theEnd);
    out.add(digits.substr(1), premature);  // what is there reads as a smaller number
  } else if constexpr (std::is_same_v<Value, bool>) {
    addWord(out, value ? "True" : "False", at.prefix + "expected True or False");
  } else if constexpr (std::is_same_v<Value, Handle>) {
    Mox::String8 const text = Mox::valueToStrepOfRawPtr(value.ptr(), Fru::PciHam::_fwkType());
    addHandle(out, text.view(), at);
  } else {
    addStringIn(out, valueToStrep(value).view(), at);
  }
}

/// Adds fields one behind the other.
class Fields {
 public:
  Fields(CuttableText& out, std::string const& type)
      : out_(out), premature_("premature end of value type " + type) {}

  template <class Value>
  Fields& add(std::string const& name, Value const& value) {
    if (!first_) {
      out_.add(",", premature_);
      out_.add(" ", noString);
    }
    addString(out_, "'" + name + "'", {}, first_ ? premature_ : noString);
    addToken(out_, ":");
    Place const at{name + ": "};
    out_.add(" ", valueMissing(at, value));
    addValue(out_, premature_, at, value);
    first_ = false;
    return *this;
  }

  void close() {
    out_.add("}", premature_);
    addToken(out_, ")");
  }

 private:
  template <class Value>
  std::string valueMissing(Place const& at, Value const& value) {
    CuttableText alone;
    addValue(alone, premature_, at, value);
    return alone.message(0);
  }

  CuttableText& out_;
  std::string premature_;
  bool first_ = true;
};

Fields addHead(CuttableText& out, std::string const& entity, std::string const& type) {
  addToken(out, "Value");
  addToken(out, "(");
  addToken(out, "'Hardware::Kest::Slice::" + entity + "::" + type + "'");
  addToken(out, ",");
  addToken(out, " **");
  addToken(out, " {");
  return Fields(out, type);
}

CuttableText cuttable(ConfigSwitchPort const& port) {
  CuttableText out;
  addHead(out, "KestSliceDmaConfig", "SwitchPort")
      .add("ifName", port.ifName())
      .add("destId", port.destId())
      .add("shadowIntfId", port.shadowIntfId())
      .add("trafficClass", port.trafficClass())
      .add("devName", port.devName())
      .add("fapNum", port.fapNum())
      .add("ctrl", port.ctrl())
      .add("hwLag", port.hwLag())
      .add("macAddr", port.macAddr())
      .close();
  return out;
}

CuttableText cuttable(ConfigDevice const& device) {
  CuttableText out;
  addHead(out, "KestSliceDmaConfig", "Device")
      .add("devName", device.devName())
      .add("pciHam", device.pciHam())
      .add("fapType", device.fapType())
      .add("numFaps", device.numFaps())
      .add("cpuTmSysPort", device.cpuTmSysPort())
      .add("cpuEthSysPort", device.cpuEthSysPort())
      .add("cpuRawSysPort", device.cpuRawSysPort())
      .add("sflowPort", device.sflowPort())
      .add("cpuAradSysPort", device.cpuAradSysPort())
      .add("cpuArad", device.cpuArad())
      .add("cpuAradBridge", device.cpuAradBridge())
      .close();
  return out;
}

CuttableText cuttable(StatusSwitchPort const& port) {
  CuttableText out;
  addHead(out, "KestSliceDmaStatus", "SwitchPort")
      .add("ifName", port.ifName())
      .add("created", port.created())
      .close();
  return out;
}

CuttableText cuttable(StatusDevice const& device) {
  CuttableText out;
  addHead(out, "KestSliceDmaStatus", "Device")
      .add("devName", device.devName())
      .add("registered", device.registered())
      .close();
  return out;
}

template <class Record>
class CutRecord : public testing::Test {};
TYPED_TEST_SUITE(CutRecord, AllRecords);

TYPED_TEST(CutRecord, IsRefusedWithTheMessageOfTheCut) {
  Random random(211);
  for (int i = 0; i < 50; ++i) {
    auto const record = randomRecord<TypeParam>(random);
    CuttableText const cut = cuttable(record);
    ASSERT_EQ(valueToStrep(record), cut.text());
    for (std::size_t length = 0; length < cut.text().size(); ++length) {
      std::string const beginning = cut.text().substr(0, length);
      ASSERT_EQ(refusal([&] { read<TypeParam>(beginning); }), cut.message(length)) << beginning;
    }
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
