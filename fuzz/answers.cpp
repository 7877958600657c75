// Answers on the wire: any operation of the model against any bytes.
#include "fuzz/Model.h"

using namespace k4n;
using namespace measurement;

namespace {

using Values = std::array<double, 200>;

/// Every operation, each with arguments of its own.
constexpr void (*kOperations[])(D3THardWare& model, Values& v) = {
    [](D3THardWare& m, Values&) { m.Initialize(); },
    [](D3THardWare& m, Values&) { m.Recover(); },
    [](D3THardWare& m, Values&) {
      std::uint32_t kind = 18;
      m.QueryInstrumentKind(kind);
    },
    [](D3THardWare& m, Values& v) {
      LevelSettings level;
      m.ReadOutputState(level, v[0]);
    },
    [](D3THardWare& m, Values& v) { m.SetCwFrequency(v[0]); },
    [](D3THardWare& m, Values& v) {
      StepSettings sweep{v[0], v[1], v[2]};
      m.SetFrequencySweep(sweep);
    },
    [](D3THardWare& m, Values& v) {
      LevelSettings level;
      m.SetOutputLevel(level, v[0]);
      StepSettings sweep{v[0], v[1], v[2]};
      m.SetPowerSweep(level, sweep);
    },
    [](D3THardWare& m, Values& v) { m.TransferList(ListAxis::kFrequency, v, {}); },
    [](D3THardWare& m, Values& v) { m.TransferList(ListAxis::kPower, v, {}); },
    [](D3THardWare& m, Values& v) { m.SetDwell(v[0]); },
    [](D3THardWare& m, Values& v) { m.SetDwellThousands(v[0]); },
    [](D3THardWare& m, Values&) {
      std::int32_t factor = 3;
      m.SetAveraging(factor);
    },
    [](D3THardWare& m, Values&) {
      TriggerElements elements;
      m.SetTriggerInput(1, elements);
      m.SetTriggerOutput(0, elements);
    },
    [](D3THardWare& m, Values& v) {
      PulseSource source{};
      Values gaps = v;
      m.TransferPulseTrain(2, source, v, gaps, false);
    },
    [](D3THardWare& m, Values& v) { m.SetSyncGenerator(v[0], v[1], v[2]); },
    [](D3THardWare& m, Values& v) {
      bool enabled = true;
      m.SetExternalReference(enabled, v[0]);
    },
    [](D3THardWare& m, Values& v) { m.SetPhaseDelay(v[0]); },
    [](D3THardWare& m, Values&) {
      std::uint32_t mode = 1;
      m.SetCompensationMode(mode);
    },
    [](D3THardWare& m, Values&) {
      bool state = false;
      m.ReadRfButton(state);
      m.ReadPllState(state);
      m.ReadErgState(state);
      m.ReadLevelState(state);
    },
    [](D3THardWare& m, Values&) {
      std::string text;
      m.ReadInstrumentFile("\\FRAM\\TYPE.TXT", text);
      m.QuerySerialNumber(text);
    },
    [](D3THardWare& m, Values&) {
      std::vector<std::uint8_t> buffer(65535);
      fuzz::Require(m.ReadDataBlock(buffer, ReadingFormat::kFractional).value.body.size() <=
                    buffer.size());
    },
    [](D3THardWare& m, Values&) {
      std::array<std::uint8_t, 1202> buffer{};
      for (int poll = 0; poll < 8; ++poll) {
        fuzz::Require(m.PollDataBlock(buffer, ReadingFormat::kInteger).value.body.size() <=
                      buffer.size());
      }
    },
    [](D3THardWare& m, Values& v) { m.TransferFrequencyTable(v); },
    [](D3THardWare& m, Values& v) {
      std::array<std::uint32_t, 3> elements{};
      bool enabled = false;
      m.WritePulseTrainFixed(elements);
      m.WriteSwitchSetting(enabled, elements[0]);
      m.WriteScaledSetting(v[0], elements[1], v[1]);
      m.WriteFixedConfiguration(true);
    },
};

/// Well framed answers: status, size, body.
void QueueFramed(fuzz::Input& input, scripted::Control& script) {
  while (!input.rest().empty()) {
    const auto status = static_cast<std::int16_t>(input.TakeByte() | input.TakeByte() << 8);
    const auto body = input.Take(std::size_t{input.TakeByte()} * 2);
    script.QueueAnswer(status, body.data(), body.size());
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
    model.script().QueueRaw(input.rest().data(), input.rest().size());
    model.EndSilence();
  }
  Values values;
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i);
  kOperations[(selector & 0x7F) % std::size(kOperations)](*model, values);
  model.RequireThatItWorks();
  return 0;
}
