// Every member while no session is open, and the members that say that they are not supported, with
// one as well.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

const IID& kDriver = __uuidof(IIviDriver);
const IID& kRoot = __uuidof(IZentrelK4N);
const IID& kFrequencyStep = __uuidof(IZentrelK4NFrequencyStep);

/// What a member that is supported answers other than that there is no connection.
struct Exception {
  std::string_view member;
  HRESULT result;
  std::vector<std::string> reads = {};  // what is written
  std::string_view text = "";           // of the error information that is left behind
  const IID* iid = nullptr;
};

// clang-format off
const Exception kExceptions[] = {
    {"Root.Initialize", Code(0x8004705B), {}, "ZentrelK4NLib: File not found ZeVisa64.dll", &kDriver},
    {"Root.get Initialized", S_OK, {"0"}},
    {"Root.Close", kNotConnectedCode, {}, kNotConnected, &kDriver},
    {"RF.DisableAllModulation", kNoSessionCode},
    {"Sweep.get Mode", S_OK, {"0"}},
    {"List.put SingleStepEnabled", kNotConnectedCode, {}, kNotConnected, &kFrequencyStep},
    {"List.get SingleStepEnabled", kNotConnectedCode, {}, kNotConnected, &kFrequencyStep},
    {"List.put Dwell", kNotConnectedCode, {}, kNotConnected, &kFrequencyStep},
    {"List.get Dwell", kNotConnectedCode, {}, kNotConnected, &kFrequencyStep},
    {"List.ClearAll", S_OK},
    {"TriggerOutput.put Width", S_OK}, {"TriggerOutput.get Width", S_OK, {"1e-06"}},
    {"TriggerOutput.put Mode", S_OK}, {"TriggerOutput.get Mode", S_OK, {"1001"}},
    {"TriggerOutput.put Polarity", S_OK}, {"TriggerOutput.get Polarity", S_OK, {"0"}},
    {"TriggerOutput.put Enabled", S_OK}, {"TriggerOutput.get Enabled", S_OK, {"0"}},
    {"PulseModulation.put Enabled", kNoSessionCode}, {"PulseModulation.get Enabled", S_OK, {"0"}},
    {"PulseModulation.put Source", S_OK}, {"PulseModulation.get Source", S_OK, {"0"}},
    {"PulseModulation.put ExternalPolarity", kNoSessionCode},
    {"PulseModulation.get ExternalPolarity", S_OK, {"0"}},
    {"PulseGenerator.Configure", S_OK},
    {"PulseGenerator.put InternalTriggerPeriod", S_OK},
    {"PulseGenerator.get InternalTriggerPeriod", S_OK, {"0"}},
    {"PulseGenerator.put Width", S_OK}, {"PulseGenerator.get Width", S_OK, {"1e-09"}},
    {"PulseGeneratorDouble.Configure", S_OK},
    {"PulseGeneratorDouble.put Enabled", S_OK}, {"PulseGeneratorDouble.get Enabled", S_OK, {"0"}},
    {"PulseGeneratorDouble.put Delay", S_OK}, {"PulseGeneratorDouble.get Delay", S_OK, {"0"}},
    {"PulsePacketGenerator.put Enabled", S_OK}, {"PulsePacketGenerator.get Enabled", S_OK, {"0"}},
    {"PulsePacketGenerator.Configure", S_OK},
    {"SyncGenerator.put Width", kNoSessionCode}, {"SyncGenerator.get Width", S_OK, {"0"}},
    {"SyncGenerator.put Period", kNoSessionCode}, {"SyncGenerator.get Period", S_OK, {"0"}},
    {"SyncGenerator.put Delay", kNoSessionCode}, {"SyncGenerator.get Delay", S_OK, {"0"}},
    {"Acquisition.get Status", S_OK, {"2"}},
    {"Acquisition.Initiate", S_OK, {}, kNotConnected, &kRoot}, {"Acquisition.Abort", S_OK},
    {"Channels.get Count", S_OK, {"3"}}, {"Channels.get Name", S_OK, {"ChannelA"}},
    {"Channel.FetchData", Code(0x80047000), {}, "ZentrelK4NLib: Failure \xE2\x80\x93 cannot recover."},
    {"Channel.put FrequencyOffset", S_OK}, {"Channel.get FrequencyOffset", S_OK, {"0"}},
    {"Channel.put FrequencyMultiplier", S_OK}, {"Channel.get FrequencyMultiplier", S_OK, {"1"}},
    {"Channel.put FrequencyDivider", S_OK}, {"Channel.get FrequencyDivider", S_OK, {"1"}},
};
// clang-format on

Exception ExpectedOf(const Walked& walked) {
  const auto* const row = std::ranges::find(kExceptions, walked.name, &Exception::member);
  if (row != std::end(kExceptions)) return *row;
  if (walked.IsWay()) return {walked.name, S_OK, {"object"}};
  return {walked.name, kNotConnectedCode, {}, kNotConnected};
}

void ExpectUnsupported(const Surface& surface, const Walked& walked, const Unsupported& row,
                       std::optional<std::size_t> null_out = std::nullopt) {
  const bool is_method = walked.member->kind == members::Kind::kMethod;
  std::string text = "ZentrelK4NLib: Does not support this class-compliant feature: ";
  text.append(is_method ? "method " : "property ").append(walked.member->name);
  text.append(row.behind).append(".");
  const Answer answer = Call(surface, walked, {}, null_out);
  ExpectReported(answer.result, is_method ? kMethodCode : kPropertyCode, text,
                 row.iid != nullptr ? *row.iid : walked.interface_entry->id);
  EXPECT_THAT(answer.written, testing::IsEmpty());
}

// Every member gets an object of its own, so that none sees what another one left.
TEST(NoSession, EveryMemberAnswers) {
  for (const Walked& walked : AllMembers()) {
    SCOPED_TRACE(walked.name);
    const Surface surface;
    if (const Unsupported* const row = walked.FindUnsupported()) {
      ExpectUnsupported(surface, walked, *row);
      continue;
    }
    const Exception expected = ExpectedOf(walked);
    const Answer answer = Call(surface, walked);
    ExpectReported(answer.result, expected.result, expected.text,
                   expected.iid != nullptr ? *expected.iid : walked.interface_entry->id);
    EXPECT_EQ(answer.written, expected.reads);
  }
}

TEST(NoSession, NoMemberWritesThroughANullPointer) {
  const Surface surface;
  for (const Walked& walked : AllMembers()) {
    for (std::size_t i = 0; i < walked.member->parameters.size(); ++i) {
      if (!walked.member->parameters[i].IsOut()) continue;
      SCOPED_TRACE(walked.name + ", argument " + std::to_string(i));
      if (const Unsupported* const row = walked.FindUnsupported()) {
        ExpectUnsupported(surface, walked, *row, i);
        continue;
      }
      const Answer answer = Call(surface, walked, {}, i);
      ExpectReported(answer.result, E_POINTER, "", {});
      EXPECT_THAT(answer.written, testing::IsEmpty());
    }
  }
}

/// A typing error in a table must not turn a row into one of nothing.
TEST(NoSession, EveryExceptionIsOneOfAMember) {
  for (const Exception& row : kExceptions) EXPECT_NO_THROW(MemberOf(row.member)) << row.member;
  for (const auto& name : UnsupportedNames()) EXPECT_NO_THROW(MemberOf(name)) << name;
}

TEST_F(SessionTest, ChangesNothingForTheUnsupportedAndOpensTheGetters) {
  Open();
  for (const Walked& walked : AllMembers()) {
    SCOPED_TRACE(walked.name);
    if (const Unsupported* const row = walked.FindUnsupported()) {
      ExpectUnsupported(surface_, walked, *row);
    } else if (walked.member->kind == members::Kind::kGet) {
      const Answer answer = Call(surface_, walked);
      ExpectReported(answer.result, S_OK, "", {});
      EXPECT_EQ(answer.written.size(), 1u);
    }
  }
}

TEST(NoSession, CallsTellANullThatWasWrittenAndRefuseWhatDoesNotFit) {
  const Surface surface;
  std::array<members::Argument, 2> arguments;
  const auto call = [&](std::string_view name) {
    return MemberOf(name).member->Call(surface.channels.Get(), arguments);
  };
  EXPECT_EQ(call("Channels.get Item"), Code(0x80047020)) << "a text without a value is null";
  EXPECT_TRUE(arguments[1].written) << "null is written, too";
  EXPECT_THROW(call("Channels.get Count"), std::invalid_argument);
  arguments[0].value = 7.0;
  EXPECT_THROW(call("Channels.get Name"), std::bad_variant_access);
  TakeErrorInfo();
}

TEST(NoSession, ANameTakesThePlaceOfWhatStoodThere) {
  constexpr std::size_t kLetters = 1 << 20;
  const Surface surface;
  BSTR name = Bstr(os::WideString(kLetters, 'x')).Detach();
  const std::size_t before = CountResources().memory;
  EXPECT_EQ(surface.channels->get_Name(2, &name), S_OK);
  EXPECT_TRUE(before == 0 || before > CountResources().memory + kLetters) << "is freed";
  EXPECT_EQ(TakeText(name), "ChannelB");
  for (const LONG index : {0, 4}) {
    name = Untouchable<OLECHAR>();
    ExpectReported(surface.channels->get_Name(index, &name), Code(0x80047010),
                   "ZentrelK4NLib: Invalid value (" + std::to_string(index) +
                       ") for method Index, parameter Name.",
                   __uuidof(IZentrelK4NChannels));
    EXPECT_EQ(name, Untouchable<OLECHAR>()) << "not freed";
  }
}

}  // namespace
}  // namespace driver_test
