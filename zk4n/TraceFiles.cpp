#include "zk4n/TraceFiles.h"

#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>

namespace zk4n {
namespace {

std::string_view AxisColumn(const Trace& trace) {
  return trace.axis == SweptAxis::kFrequency ? "frequency_hz" : "level_dbm";
}

nlohmann::ordered_json NumberOrNull(double value) {
  return std::isfinite(value) ? nlohmann::ordered_json(value) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json ChannelAsJson(const std::vector<double>& x,
                                     const std::vector<double>& values) {
  const ChannelSummary summary = Summarise(x, values);
  auto list = nlohmann::ordered_json::array();
  for (const double value : values) list.push_back(NumberOrNull(value));
  return {{"minimum", NumberOrNull(summary.minimum)},
          {"maximum", NumberOrNull(summary.maximum)},
          {"mean", NumberOrNull(summary.mean)},
          {"values", std::move(list)}};
}

void AppendRow(std::ostringstream& table, const std::string& name, const Trace& trace,
               const std::vector<double>& values) {
  const ChannelSummary summary = Summarise(trace.x, values);
  const auto number = [](double value) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << value;
    return text.str() == "-0.000" ? "0.000" : text.str();
  };
  table << "  " << std::left << std::setw(8) << name << std::right << std::setw(10)
        << number(summary.minimum) << std::setw(14)
        << FormatQuantity(summary.minimum_at, trace.XUnit()) << std::setw(10)
        << number(summary.maximum) << std::setw(14)
        << FormatQuantity(summary.maximum_at, trace.XUnit()) << std::setw(10)
        << number(summary.mean) << '\n';
}

}  // namespace

std::string TraceAsCsv(const Trace& trace, const TraceOrigin& origin) {
  std::ostringstream csv;
  csv << std::setprecision(17);
  csv << "# instrument: " << origin.instrument << "\n# serial: " << origin.serial
      << "\n# resource: " << origin.resource << "\n# date: " << origin.date
      << "\n# conditions: " << origin.conditions << '\n';
  csv << AxisColumn(trace) << ",A,B,R\n";
  for (std::size_t i = 0; i < trace.x.size(); ++i) {
    csv << trace.x[i];
    for (const auto& channel : trace.channels) csv << ',' << channel[i];
    csv << '\n';
  }
  return csv.str();
}

std::string TraceAsJson(const Trace& trace, const TraceOrigin& origin) {
  nlohmann::ordered_json channels;
  for (std::size_t c = 0; c < kChannels; ++c) {
    channels[std::string(kChannelLetters[c])] = ChannelAsJson(trace.x, trace.channels[c]);
  }
  channels["A-R"] = ChannelAsJson(trace.x, TransmissionOf(trace));
  const nlohmann::ordered_json document{
      {"instrument", origin.instrument},
      {"serial", origin.serial},
      {"resource", origin.resource},
      {"date", origin.date},
      {"conditions", origin.conditions},
      {"points", trace.x.size()},
      {"axis", {{"name", AxisColumn(trace)}, {"values", trace.x}}},
      {"channels", std::move(channels)}};
  return document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string TraceSummaryTable(const Trace& trace, const TraceOrigin& origin) {
  std::ostringstream table;
  table << "Instrument " << (origin.instrument.empty() ? "(no type text)" : origin.instrument)
        << ", serial " << (origin.serial.empty() ? "(none)" : origin.serial) << ", "
        << origin.resource << '\n';
  table << "Points " << trace.x.size();
  if (!trace.x.empty()) {
    table << ", " << FormatQuantity(trace.x.front(), trace.XUnit(), 10) << " to "
          << FormatQuantity(trace.x.back(), trace.XUnit(), 10);
  }
  if (!origin.conditions.empty()) table << ", " << origin.conditions;
  table << "\n  channel        min            at       max            at      mean\n";
  for (std::size_t c = 0; c < kChannels; ++c) {
    AppendRow(table, std::string(kChannelLetters[c]), trace, trace.channels[c]);
  }
  AppendRow(table, "A-R", trace, TransmissionOf(trace));
  return table.str();
}

}  // namespace zk4n
