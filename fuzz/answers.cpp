// Answers on the wire: any operation of the model against any bytes.
#include "fuzz/Model.h"
#include "tests/link/Operations.h"

using namespace operations;
using measurement::ReadingFormat;

namespace {

std::vector<std::uint8_t> buffer(65535);

/// Beside those that are one transaction: what takes several of them, or has no arguments of
/// numbers alone.
const std::vector<decltype(Operation::run)> kOthers = {
    Calling(&D::Initialize),
    Calling(&D::Recover),
    Calling(&D::SetCwFrequency, 1.0),
    Calling(&D::SetFrequencySweep, StepSettings{0, 1, 2}),
    [](D& model, Values& values) {
      Calling(&D::SetOutputLevel, LevelSettings{}, 1.0)(model, values);
      return Calling(&D::SetPowerSweep, LevelSettings{}, StepSettings{0, 1, 2})(model, values);
    },
    Calling(&D::TransferList, ListAxis::kFrequency, Values(200, 1), LevelSettings{}),
    Calling(&D::TransferList, ListAxis::kPower, Values(200, 1), LevelSettings{}),
    Calling(&D::TransferPulseTrain, 2U, PulseSource{}, Values(200, 1), Values(200, 2), false),
    Calling(&D::TransferFrequencyTable, Values(200, 1)),
    Calling(&D::ReadPllState, true),
    Calling(&D::ReadErgState, true),
    Calling(&D::ReadLevelState, true),
    [](D& model, Values&) {
      std::string text;
      model.ReadInstrumentFile("\\FRAM\\TYPE.TXT", text);
      return model.QuerySerialNumber(text);
    },
    [](D& model, Values&) {
      const auto [status, block] = model.ReadDataBlock(buffer, ReadingFormat::kFractional);
      fuzz::Require(block.body.size() <= buffer.size());
      return status;
    },
    [](D& model, Values&) {
      const auto part = std::span(buffer).first(1202);
      for (int poll = 0; poll < 7; ++poll) {
        fuzz::Require(model.PollDataBlock(part, ReadingFormat::kInteger).value.body.size() <=
                      part.size());
      }
      return model.Recover();
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
  const std::size_t operation = (selector & 0x7F) % (kOthers.size() + kOperations.size());
  const bool is_other = operation < kOthers.size();
  auto run = is_other ? kOthers[operation] : kOperations[operation - kOthers.size()].run;
  Values values;
  run(*model, values);
  model.RequireThatItWorks();
  return 0;
}
