#include "zk4n/iotrace/Report.h"

#include <cstdio>

#include "zk4n/Quantity.h"
#include "zk4n/iotrace/MessageWords.h"

namespace iotrace {
namespace {

std::string DurationText(std::chrono::microseconds time) {
  return zk4n::FormatQuantity(static_cast<double>(time.count()) / 1e6, zk4n::Unit::kSecond, 4);
}

std::string Beginning(TimePoint time, std::uint64_t process, std::uint64_t session) {
  return TimeText(time) + " " + std::to_string(process) + ":" + std::to_string(session) + " ";
}

/// ": start 1 GHz"; empty for nothing.
std::string Behind(const Content& content) {
  const std::string text = content.elements.empty() ? content.text : ElementsText(content.elements);
  return text.empty() ? "" : ": " + text;
}

std::string CutText(const StreamMessage& message) {
  if (!message.IsCut()) return {};
  return " (" + std::to_string(message.message.body.size()) + " of " +
         std::to_string(message.length) + " bytes in the trace)";
}

std::string StatusWords(std::int16_t status) {
  const std::string name(simulator::NameOfStatus(status));
  const std::string number =
      status == simulator::status::kGood ? "" : simulator::StatusText(status);
  return number + (number.empty() || name.empty() ? "" : " ") + name;
}

std::string BlockText(const StreamMessage& answer) {
  const std::optional<Block> block = BlockOf(answer);
  if (!block) return ": " + std::to_string(answer.length) + " bytes";
  std::string text = ": " + std::to_string(block->points) + " points, mark ";
  const auto mark = static_cast<char>(answer.message.type);
  text += mark == '@' || mark == 'A' ? mark : '?';
  if (block->status) text += ", " + StatusWords(*block->status);
  return text;
}

std::string AnswerText(const Exchange& exchange) {
  if (!exchange.answer) return exchange.open_end.empty() ? "no answer" : exchange.open_end;
  const StreamMessage& answer = *exchange.answer;
  std::string text = StatusWords(answer.message.status);
  if (answer.message.status < 0) return text;
  if (exchange.IsData()) return text + BlockText(answer);
  Content content = AnswerContent(exchange);
  content.elements = Changed(RequestContent(exchange).elements, content.elements);
  return text + Behind(content) + CutText(answer);
}

std::string RemarksText(const std::vector<Remark>& remarks) {
  std::string text;
  for (const Remark& remark : remarks) {
    text.append("    ! ").append(NameOf(remark.problem)).append(": ") += remark.text + "\n";
  }
  return text;
}

std::string SlowestText(const char* what, const std::optional<Summary::Slowest>& slowest) {
  if (!slowest) return {};
  return std::string("slowest ") + what + DurationText(slowest->time) + ", " + slowest->title +
         ", line " + std::to_string(slowest->line) + ", " + TimeText(slowest->begin) + "\n";
}

}  // namespace

std::string TimeText(TimePoint time) {
  using namespace std::chrono;
  const sys_days day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  char text[64];
  std::snprintf(
      text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d.%06d", static_cast<int>(date.year()),
      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
      static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
  return text;
}

void Report::On(const Exchange& exchange) {
  summary_.Count(exchange);
  Tell(exchange);
}

void Report::On(const Call& call) {
  summary_.Count(call);
  Tell(call);
}

void Report::OnDamaged(std::size_t line, const std::string& why) {
  summary_.CountDamaged();
  TellDamaged(line, why);
}

void TextReport::Tell(const Exchange& exchange) {
  std::string text = Beginning(exchange.begin, exchange.process, exchange.session);
  if (exchange.request) text += std::to_string(exchange.request->message.sequence) + " ";
  text += TitleOf(exchange) + Behind(RequestContent(exchange));
  if (exchange.request) text += CutText(*exchange.request);
  text += " -> " + AnswerText(exchange);
  if (exchange.end) text += ", " + DurationText(*exchange.end - exchange.begin);
  Put(text + "\n" + RemarksText(exchange.remarks));
}

void TextReport::Tell(const Call& call) {
  std::string text = Beginning(call.made.time, call.made.process, call.made.session.value_or(0));
  text += call.made.call;
  for (const auto& [key, value] : call.made.values) {
    text.append(" ").append(key).append(key.empty() ? "" : "=").append(value);
  }
  if (call.made.call != "note") {
    text += " -> " + call.made.status + ", " + DurationText(call.made.duration);
  }
  Put(text + "\n" + RemarksText(call.remarks));
}

void TextReport::TellDamaged(std::size_t line, const std::string& why) {
  Put(name() + ":" + std::to_string(line) + ": " + why + "\n");
}

void TextReport::OnReplaced() { Put(name() + ": a new file from here on\n"); }

void TextReport::End() {
  std::string text = "exchanges       " + std::to_string(summary().Exchanges());
  std::string separator = ": ";
  for (const auto& [command, count] : summary().Commands()) {
    text +=
        separator + std::to_string(count) + " " + std::string(simulator::NameOfCommand(command));
    separator = ", ";
  }
  text += "\nfailures        " + std::to_string(summary().Failures());
  separator = ": ";
  for (std::size_t i = 0; i < kProblems; ++i) {
    const auto problem = static_cast<Problem>(i);
    if (problem == Problem::kPassedOver || summary().Of(problem) == 0) continue;
    text += separator + std::to_string(summary().Of(problem)) + " " + std::string(NameOf(problem));
    separator = ", ";
  }
  text += "\npassed over     " + std::to_string(summary().Of(Problem::kPassedOver)) +
          "\nleft open       " + std::to_string(summary().LeftOpen()) + "\nclears          " +
          std::to_string(summary().Clears()) + "\ndamaged lines   " +
          std::to_string(summary().Damaged()) + "\n";
  Put(text + SlowestText("setting ", summary().SlowestSetting()) +
      SlowestText("block   ", summary().SlowestBlock()));
}

}  // namespace iotrace
