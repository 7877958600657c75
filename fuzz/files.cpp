// The instrument's text files and its scrambled serial number, as they are answered.
#include "fuzz/Model.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongestBody = ProtocolMessage::kBodyCapacity;
  const auto body = fuzz::Input(data, size).Take(kLongestBody);
  fuzz::Model model;
  model.script().Answer(0, body);
  std::string text;
  fuzz::Require(model->ReadInstrumentFile("\\FRAM\\TYPE.TXT", text) == Status::kOk);
  fuzz::Require(text.size() <= body.size() && text.find_first_of(" \t\r") == std::string::npos);
  model.script().Answer(0, body);
  const Status status = model->QuerySerialNumber(text);
  fuzz::Require(status == Status::kOk || status == Status::kRefused);
  model.RequireThatItWorks();
  return 0;
}
