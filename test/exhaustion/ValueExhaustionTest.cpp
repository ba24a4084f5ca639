#include "test/exhaustion/EveryAllocation.h"
#include "test/model/RecordSamples.h"

/// Text forms and their readers without memory: all of a value, or an exception.
namespace Hardware::Kest::Slice {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;

constexpr unsigned seed = 4;

/// `print(value)` is the whole text or none.
template <class Value, class Print>
void printsWhole(Value const& value, Print const& print) {
  Mox::String8 const whole = print(value);
  atEveryAllocation([] { return Mox::String8(); }, [&](Mox::String8& text) { text = print(value); },
                    [&](Mox::String8 const& text, End end) {
                      EXPECT_EQ(text, end == End::done ? whole : Mox::String8());
                    });
}

/// What is read from `text` is the whole value or none.
template <class Value>
void readsWhole(Mox::String8 const& text) {
  Value const whole = Mox::strepToValue<Value>(text);
  atEveryAllocation([] { return Value(); },
                    [&](Value& value) { value = Mox::strepToValue<Value>(text); },
                    [&](Value const& value, End end) {
                      EXPECT_TRUE(value == (end == End::done ? whole : Value()));
                    });
}

/// A text that is refused is refused for the same reason, or there is no memory to say it.
template <class Value>
void refusesWhole(Mox::String8 const& text) {
  atEveryAllocation([] { return std::string(); },
                    [&](std::string& refusal) {
                      try {
                        Mox::strepToValue<Value>(text);
                      } catch (Mox::RangeException const& refused) {
                        Exhaustion::Pause const pause;
                        refusal = refused.what();
                      }
                    },
                    [&](std::string const& refusal, End end) {
                      EXPECT_EQ(refusal.empty(), end == End::badAlloc);
                    });
}

template <class Record>
class RecordExhaustion : public testing::Test {};
TYPED_TEST_SUITE(RecordExhaustion, AllRecords);

TYPED_TEST(RecordExhaustion, IsPrintedAndReadWhollyOrNotAtAll) {
  Random random(seed);
  for (int i = 0; i < 3; ++i) {
    auto const record = randomRecord<TypeParam>(random);
    auto const text = [](TypeParam const& value) { return valueToStrep(value); };
    printsWhole(record, text);
    readsWhole<TypeParam>(text(record));
  }
}

TYPED_TEST(RecordExhaustion, IsRefusedWithItsReason) {
  refusesWhole<TypeParam>(Mox::String8(around<TypeParam>("'noSuchField': 1")));
  refusesWhole<TypeParam>(Mox::String8(around<TypeParam>("'devName': 7")));
  refusesWhole<TypeParam>(Mox::String8(around<TypeParam>("") + " and more"));
}

TEST(DeviceStateExhaustion, IsPrintedAndReadWhollyOrNotAtAll) {
  for (unsigned const number : {0U, 1U, 2U, 77U}) {
    auto const state = static_cast<DeviceState>(number);
    printsWhole(state, [](DeviceState value) { return stringValue(value); });
    printsWhole(state, [](DeviceState value) { return valueToStrep(value); });
  }
  readsWhole<DeviceState>("'deviceStateDown'");
  refusesWhole<DeviceState>("'deviceStateSideways'");
}

}  // namespace
}  // namespace Hardware::Kest::Slice
