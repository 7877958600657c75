// Answers on the wire: any operation of the model against any bytes.
#include <numeric>

#include "fuzz/Model.h"

using namespace k4n;
using namespace measurement;

namespace {

/// What operations read and write.
struct Arguments {
  std::array<double, 200> v{};
  std::array<double, 200> gaps{};
  LevelSettings level;
  StepSettings sweep;
  TriggerElements trigger;
  PulseSource source{};
  bool flag = true;
  std::int32_t factor = 3;
  std::uint32_t number = 1;
  std::string text;
  std::array<std::uint32_t, 3> elements{};
  std::vector<std::uint8_t> buffer = std::vector<std::uint8_t>(65535);
};

/// Every operation, each with arguments of its own.
constexpr void (*kOperations[])(D3THardWare& model, Arguments& a) = {
    [](D3THardWare& m, Arguments&) { m.Initialize(); },
    [](D3THardWare& m, Arguments&) { m.Recover(); },
    [](D3THardWare& m, Arguments& a) { m.QueryInstrumentKind(a.number = 18); },
    [](D3THardWare& m, Arguments& a) { m.ReadOutputState(a.level, a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetCwFrequency(a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetFrequencySweep(a.sweep); },
    [](D3THardWare& m, Arguments& a) {
      m.SetOutputLevel(a.level, a.v[0]);
      m.SetPowerSweep(a.level, a.sweep);
    },
    [](D3THardWare& m, Arguments& a) { m.TransferList(ListAxis::kFrequency, a.v, {}); },
    [](D3THardWare& m, Arguments& a) { m.TransferList(ListAxis::kPower, a.v, {}); },
    [](D3THardWare& m, Arguments& a) { m.SetDwell(a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetDwellThousands(a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetAveraging(a.factor); },
    [](D3THardWare& m, Arguments& a) {
      m.SetTriggerInput(1, a.trigger);
      m.SetTriggerOutput(0, a.trigger);
    },
    [](D3THardWare& m, Arguments& a) { m.TransferPulseTrain(2, a.source, a.v, a.gaps, false); },
    [](D3THardWare& m, Arguments& a) { m.SetSyncGenerator(a.v[0], a.v[1], a.v[2]); },
    [](D3THardWare& m, Arguments& a) { m.SetExternalReference(a.flag, a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetPhaseDelay(a.v[0]); },
    [](D3THardWare& m, Arguments& a) { m.SetCompensationMode(a.number); },
    [](D3THardWare& m, Arguments& a) {
      m.ReadRfButton(a.flag);
      m.ReadPllState(a.flag);
      m.ReadErgState(a.flag);
      m.ReadLevelState(a.flag);
    },
    [](D3THardWare& m, Arguments& a) {
      m.ReadInstrumentFile("\\FRAM\\TYPE.TXT", a.text);
      m.QuerySerialNumber(a.text);
    },
    [](D3THardWare& m, Arguments& a) {
      fuzz::Require(m.ReadDataBlock(a.buffer, ReadingFormat::kFractional).value.body.size() <=
                    a.buffer.size());
    },
    [](D3THardWare& m, Arguments& a) {
      const auto buffer = std::span(a.buffer).first(1202);
      for (int poll = 0; poll < 8; ++poll) {
        fuzz::Require(m.PollDataBlock(buffer, ReadingFormat::kInteger).value.body.size() <=
                      buffer.size());
      }
    },
    [](D3THardWare& m, Arguments& a) { m.TransferFrequencyTable(a.v); },
    [](D3THardWare& m, Arguments& a) {
      m.WritePulseTrainFixed(a.elements);
      m.WriteSwitchSetting(a.flag, a.elements[0]);
      m.WriteScaledSetting(a.v[0], a.elements[1], a.v[1]);
      m.WriteFixedConfiguration(true);
    },
};

/// Well framed answers: status, size, body.
void QueueFramed(fuzz::Input& input, scripted::Visa& script) {
  while (!input.rest().empty()) {
    const auto status = static_cast<std::uint16_t>(input.TakeByte() | input.TakeByte() << 8);
    const auto body = input.Take(std::size_t{input.TakeByte()} * 2);
    script.Answer(status, body);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::uint8_t selector = input.TakeByte();
  fuzz::Model model;
  if ((selector & 0x80) != 0) {
    QueueFramed(input, model.script());
  } else {
    model.script().AnswerRaw(input.rest());
    model.EndSilence();
  }
  Arguments arguments;
  std::iota(arguments.v.begin(), arguments.v.end(), 0.0);
  arguments.gaps = arguments.v;
  arguments.sweep = {0.0, 1.0, 2.0};
  kOperations[(selector & 0x7F) % std::size(kOperations)](*model, arguments);
  model.RequireThatItWorks();
  return 0;
}
