// What any client may send to the simulated instrument, in pieces of any size.
#include "fuzz/Fuzz.h"
#include "simulator/Instrument.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::size_t piece = std::size_t{1} + input.TakeByte() * std::size_t{16};
  simulator::Instrument instrument{simulator::Options{}};
  simulator::RequestParser parser;
  int sweeps = 0;
  constexpr int kMostSweeps = 100;  // one takes as long as a thousand other requests
  while (!input.rest().empty()) {
    parser.Feed(input.Take(piece));
    while (const auto request = parser.Next()) {
      const bool is_data = request->command == simulator::command::kData;
      if (is_data && ++sweeps > kMostSweeps) continue;
      const auto answer =
          is_data ? instrument.MeasureSweep(*request) : instrument.Execute(*request);
      fuzz::Require(answer.sequence == request->sequence &&
                    answer.body.size() <= simulator::kMaxBody);
      simulator::EncodeAnswer(answer);
      static_cast<void>(instrument.Plan());
    }
  }
  return 0;
}
