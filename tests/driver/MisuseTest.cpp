// Clients that make every mistake there is: values beyond all reason in every argument of every
// member, calls from many threads at once, objects given up in mid-sweep, children without a root.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stop_token>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using members::Argument;
using members::Member;
using members::Type;

SafeArrayOwner NewArray(VARTYPE type, std::initializer_list<SAFEARRAYBOUND> bounds) {
  std::vector<SAFEARRAYBOUND> copy(bounds);
  return SafeArrayOwner(SafeArrayCreate(type, static_cast<UINT>(copy.size()), copy.data()));
}

/// What no client should pass as a value of the type.
std::vector<Argument> Mistakes(Type type) {
  std::vector<Argument> list(1);  // zero or null
  const auto add = [&list](auto value) { list.push_back({std::move(value)}); };
  switch (type) {
    case Type::kLong:
    case Type::kEnum:
      for (const LONG value : {-1, 259, 0x7FFFFFFF, -0x7FFFFFFF - 1}) add(value);
      break;
    case Type::kDouble:
      for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 1e18, -1.0,
                                 std::numeric_limits<double>::denorm_min()}) {
        add(value);
      }
      break;
    case Type::kBool:
      for (const int value : {1, -1, 0x7FFF}) add(static_cast<VARIANT_BOOL>(value));
      break;
    case Type::kText:
      add(Bstr(os::WideString(1 << 20, 'A')));
      add(Bstr(os::WideString{'A', 0, 0xD800, 'B', 0xDC00}));
      break;
    case Type::kArray: {
      add(NewArray(VT_I4, {{3, 0}}));
      add(NewArray(VT_R8, {{2, 0}, {2, 0}}));
      add(NewArray(VT_R8, {{0, 0}}));
      add(NewArray(VT_R8, {{3, -7}}));
      add(NewArray(VT_R8, {{20000, 5}}));
      add(Doubles({std::nan(""), HUGE_VAL, -1e300, 1e300}));
      auto locked = Doubles({1e9, 2e9});
      EXPECT_EQ(SafeArrayLock(locked.Get()), S_OK);
      add(std::move(locked));
      break;
    }
    case Type::kInterface:
      break;
  }
  return list;
}

/// An array that is locked would not be destroyed.
void Unlock(const Argument& argument) {
  const auto* const array = std::get_if<SafeArrayOwner>(&argument.value);
  if (array != nullptr && array->Get() != nullptr) SafeArrayUnlock(array->Get());
}

bool EndsTheSession(const Member& member) {
  return member.name == "Initialize" || member.name == "Close";
}

/// Every mistake in every argument, the other ones being zero. Not a text where one comes out: the
/// member writes over it, and it would be nobody's. `seen` gets each result.
template <typename Seen>
void MakeMistakes(const Member& member, IUnknown& object, Seen&& seen) {
  if (member.parameters.empty()) seen(member.Call(&object, {}));
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    const members::Parameter& parameter = member.parameters[i];
    if (parameter.type == Type::kText && parameter.IsOut()) continue;
    for (Argument& mistake : Mistakes(parameter.type)) {
      std::vector<Argument> arguments(member.parameters.size());
      arguments[i] = std::move(mistake);
      seen(member.Call(&object, arguments));
      Unlock(arguments[i]);
    }
  }
  TakeErrorInfo();
}

class Misuse : public SessionTest {
 protected:
  /// Undoes what the mistakes have set, then measures.
  void ExpectStillMeasures() {
    surface_.root->Close();
    OpenToMeasure();
    for (const auto* name : kChannelNames) {
      const auto channel = Channel(name);
      EXPECT_EQ(channel->put_FrequencyMultiplier(1.0), S_OK);
      EXPECT_EQ(channel->put_FrequencyDivider(1.0), S_OK);
      EXPECT_EQ(channel->put_FrequencyOffset(0.0), S_OK);
    }
    EXPECT_EQ(surface_.frequency_step->put_Dwell(0.0), S_OK);
    EXPECT_EQ(surface_.acquisition->put_Averaging(1), S_OK);
    ExpectMeasures();
  }
};

TEST_F(Misuse, NoValueInAnyArgumentEndsTheSession) {
  Open();
  std::size_t calls = 0;
  for (const Walked& walked : AllMembers()) {
    SCOPED_TRACE(walked.name);
    if (EndsTheSession(*walked.member)) continue;
    const auto object = ObjectOf(surface_, walked.interface_entry->id);
    MakeMistakes(*walked.member, *object, [&calls](HRESULT) { ++calls; });
    ASSERT_TRUE(IsOpen());
  }
  std::printf("%zu calls\n", calls);
  ExpectStillMeasures();
}

TEST_F(Misuse, NoResourceNameIsTooWrong) {
  MakeMistakes(*MemberOf("Root.Initialize").member, *surface_.root.Get(), [](HRESULT result) {
    EXPECT_EQ(result, Code(0x80047060)) << "an unknown resource";
  });
  ExpectStillMeasures();
}

TEST_F(Misuse, ManyThreadsMayCallAnythingAtOnce) {
  constexpr int kThreads = 16;
  constexpr int kCalls = 40;
  Open();
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      std::mt19937 random(static_cast<unsigned>(thread));
      std::uniform_int_distribution<std::size_t> pick(0, AllMembers().size() - 1);
      for (int call = 0; call < kCalls; ++call) {
        // One of them opens the session again, as often as it is told.
        if (thread == 0 && call % 10 == 9) Initialize();
        if (thread == 0 && call % 20 == 19) surface_.root->Close();
        const Walked& walked = AllMembers()[pick(random)];
        if (EndsTheSession(*walked.member)) continue;
        std::vector<Argument> arguments(walked.member->parameters.size());
        walked.member->Call(ObjectOf(surface_, walked.interface_entry->id).Get(), arguments);
      }
      TakeErrorInfo();
    });
  }
  threads.clear();
  ExpectStillMeasures();
}

TEST_F(Misuse, AnObjectMayGoInTheMiddleOfASweep) {
  Open();
  StartSweep(1e9, 2e9, 1e7);
  surface_ = Surface(ModuleWithVisa());
  EXPECT_TRUE(WaitUntil([this] { return instrument_.ConnectionCount() == 0; }));
  EXPECT_FALSE(instrument_.State().output_enabled);
  ExpectStillMeasures();
}

TEST_F(Misuse, SessionsMayEndAndBeginUnderAFetch) {
  Open();
  LoadDetectors();
  std::jthread fetching([this](const std::stop_token& stop) {
    const auto channel = Channel("ChannelA");
    while (!stop.stop_requested()) {
      surface_.acquisition->Initiate();
      SAFEARRAY* array = nullptr;
      double x = 0.0;
      channel->FetchData(&array, &x, &x);
      const SafeArrayOwner owner(array);
      TakeErrorInfo();
    }
  });
  for (int i = 0; i < 3; ++i) {  // each waits for a read to end
    StartSweep(1e9, 2e9, 1e7);
    if (i % 2 == 0) surface_.root->Close();
    EXPECT_EQ(Initialize(), S_OK);
  }
  fetching = {};
  ExpectStillMeasures();
}

TEST(MisuseOfMany, SessionsOfManyInstrumentsKeepApart) {
  constexpr std::size_t kInstruments = 64;
  std::vector<std::jthread> threads;
  threads.reserve(kInstruments);
  for (std::size_t i = 0; i < kInstruments; ++i) {
    threads.emplace_back([i] {
      const double centre = 1e9 + static_cast<double>(i) * 4e7;
      Bench bench({.device = {.centre = centre}});
      bench.OpenToMeasure();
      bench.RunSweep(centre - 2e8, centre + 2e8, 1e7);
      bench.ExpectResponse(Bench::kLevel, 41);
      EXPECT_EQ(bench.surface_.root->Close(), S_OK);
      TakeErrorInfo();
    });
  }
}

TEST(MisuseOfChildren, EveryMemberOfOneWithoutARootFailsCleanly) {
  for (const ClassRow& row : std::span(Classes()).subspan(1)) {
    const auto object = SharedModule().Create(row.class_id);
    for (const Walked& walked : AllMembers()) {
      ComPtr<IUnknown> wanted;
      if (object->QueryInterface(walked.interface_entry->id, wanted.PutVoid()) != S_OK) continue;
      MakeMistakes(*walked.member, *wanted, [&](HRESULT result) {
        EXPECT_TRUE(result == kNotConnectedCode || result == kMethodCode ||
                    result == kPropertyCode || (walked.IsWay() && result == S_OK))
            << walked.name << " gives " << std::hex << result;
        const ErrorInfo info = TakeErrorInfo();
        EXPECT_TRUE(result != kNotConnectedCode || info.description == kNotConnected)
            << walked.name;
      });
    }
  }
}

}  // namespace
}  // namespace driver_test
