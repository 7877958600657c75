// Every member while no session is open, and the members that say that they are not supported, with
// one as well.
#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

const IID& kDriver = __uuidof(IIviDriver);
const IID& kFrequencyStep = __uuidof(IZentrelK4NFrequencyStep);

/// What a member that is supported answers other than that there is no connection.
struct Exception {
  std::string_view beginning;  // of the member's name; the first row that fits is the member's
  HRESULT result;
  std::string_view reads = "";  // what a get writes
  std::string_view text = "";   // of the error information that is left behind
  const IID* iid = nullptr;     // and whose it is, if not the interface's own
};

const Exception kExceptions[] = {
    {"Root.Initialize", Code(0x8004705B), "", "ZentrelK4NLib: File not found ZeVisa64.dll",
     &kDriver},
    {"Root.get Initialized", S_OK, "0"},
    {"Root.Close", kNotConnectedCode, "", kNotConnected, &kDriver},
    {"RF.DisableAllModulation", kNoSessionCode},
    {"Sweep.get Mode", S_OK, "0"},
    {"List.put ", kNotConnectedCode, "", kNotConnected, &kFrequencyStep},
    {"List.get ", kNotConnectedCode, "", kNotConnected, &kFrequencyStep},
    {"List.ClearAll", S_OK},
    {"TriggerOutput.get Width", S_OK, "1e-06"},
    {"TriggerOutput.get Mode", S_OK, "1001"},
    {"TriggerOutput.", S_OK, "0"},
    {"PulseModulation.put Source", S_OK},
    {"PulseModulation.put ", kNoSessionCode},
    {"PulseModulation.get ", S_OK, "0"},
    {"PulseGenerator.get Width", S_OK, "1e-09"},
    {"PulseGenerator", S_OK, "0"},  // PulseGeneratorDouble, too
    {"PulsePacketGenerator.", S_OK, "0"},
    {"SyncGenerator.put ", kNoSessionCode},
    {"SyncGenerator.get ", S_OK, "0"},
    {"Acquisition.get Status", S_OK, "2"},
    {"Acquisition.Initiate", S_OK, "", kNotConnected, &__uuidof(IZentrelK4N)},
    {"Acquisition.Abort", S_OK},
    {"Channels.get Count", S_OK, "3"},
    {"Channels.get Name", S_OK, "ChannelA"},
    {"Channel.FetchData", Code(0x80047000), "", "ZentrelK4NLib: Failure \u2013 cannot recover."},
    {"Channel.get FrequencyOffset", S_OK, "0"},
    {"Channel.get Frequency", S_OK, "1"},
    {"Channel.put Frequency", S_OK},
};

Exception ExpectedOf(const Walked& walked) {
  if (walked.IsWay()) return {walked.name, S_OK, "object"};
  for (const Exception& row : kExceptions) {
    if (walked.name.starts_with(row.beginning)) return row;
  }
  return {walked.name, kNotConnectedCode, "", kNotConnected};
}

// Every member gets an object of its own, so that none sees what another one left.
TEST(NoSession, EveryMemberAnswers) {
  std::size_t unsupported = 0;
  for (const Walked& walked : AllMembers()) {
    SCOPED_TRACE(walked.name);
    if (!walked.IsSupported()) {
      ++unsupported;
      continue;
    }
    const Exception expected = ExpectedOf(walked);
    const Answer answer = Call(Surface(), walked);
    ExpectReported(answer.result, expected.result, expected.text,
                   expected.iid != nullptr ? *expected.iid : walked.interface_entry->id);
    const bool reads = walked.member->kind == members::Kind::kGet && !expected.reads.empty();
    EXPECT_EQ(answer.written, std::vector<std::string>(reads ? 1 : 0, std::string(expected.reads)));
  }
  EXPECT_EQ(unsupported, 64U) << "the console's script tells how each says so";
}

TEST(NoSession, NoMemberWritesThroughANullPointer) {
  const Surface surface;
  for (const Walked& walked : AllMembers()) {
    for (std::size_t i = 0; i < walked.member->parameters.size(); ++i) {
      if (!walked.member->parameters[i].IsOut()) continue;
      SCOPED_TRACE(walked.name + ", argument " + std::to_string(i));
      const bool is_supported = walked.IsSupported();
      const Answer answer = Call(surface, walked, {}, i);
      EXPECT_EQ(TakeErrorInfo().present, !is_supported);
      EXPECT_EQ(answer.result, is_supported ? E_POINTER : Call(surface, walked).result);
      EXPECT_THAT(answer.written, testing::IsEmpty());
    }
  }
}

TEST_F(SessionTest, ChangesNothingForTheUnsupportedAndOpensTheGetters) {
  Open();
  for (const Walked& walked : AllMembers()) {
    SCOPED_TRACE(walked.name);
    if (!walked.IsSupported()) {
      const HRESULT expected = Call(Surface(), walked).result;
      const ErrorInfo info = TakeErrorInfo();
      ExpectReported(Call(surface_, walked).result, expected, info.description, info.iid);
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
    EXPECT_EQ(surface.channels->get_Name(index, &name), Code(0x80047010));
    EXPECT_EQ(name, Untouchable<OLECHAR>()) << "not freed";
  }
  TakeErrorInfo();
}

}  // namespace
}  // namespace driver_test
