// Dates, and the identity text that holds them.
#include "fuzz/Model.h"

using namespace k4n;

namespace {

void RequireDate(const IdentityDate& date) {
  fuzz::Require(!date.IsKnown() || (date.year > 1900 && date.month >= 1 && date.month <= 11 &&
                                    date.day >= 1 && date.day <= 31));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::uint8_t kIdentifier = 15;
  constexpr std::uint16_t kRead = 4;
  fuzz::Input input(data, size);
  RequireDate(ParseIdentityDate(input.text()));

  fuzz::Model model;
  std::vector<std::uint8_t> body = {kIdentifier, 0};
  const auto text = input.Take(7000 - body.size());
  body.insert(body.end(), text.begin(), text.end());
  model.script().RuleBody(kRead, kIdentifier, body, 0, 1);
  model->Initialize();
  RequireDate(model->identity().manufactured);
  RequireDate(model->identity().dsp_program);
  RequireDate(model->identity().fpga_firmware);
  return 0;
}
