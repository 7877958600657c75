#include <nlohmann/json.hpp>

#include "zk4n/iotrace/MessageWords.h"
#include "zk4n/iotrace/Report.h"

namespace iotrace {
namespace {

using Json = nlohmann::ordered_json;

/// Texts of a trace may hold any bytes.
std::string LineOf(const Json& object) {
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

double Seconds(std::chrono::microseconds time) { return static_cast<double>(time.count()) / 1e6; }

Json JsonOf(const std::vector<Remark>& remarks) {
  Json list = Json::array();
  for (const Remark& remark : remarks) {
    list.push_back({{"kind", NameOf(remark.problem)}, {"text", remark.text}});
  }
  return list;
}

Json JsonOf(const Content& content) {
  if (!content.text.empty()) return content.text;
  Json list = Json::array();
  for (const auto& [element, value] : content.elements) {
    Json row{{"name", element.name}, {"value", value}};
    if (element.unit != simulator::ElementUnit::kNone) row["unit"] = SymbolOf(element.unit);
    list.push_back(std::move(row));
  }
  return list;
}

void AddAnswer(const Exchange& exchange, Json& object) {
  const StreamMessage& answer = *exchange.answer;
  object["status"] = answer.message.status;
  object["status_name"] = simulator::NameOfStatus(answer.message.status);
  object["answer"] = JsonOf(exchange.IsData() ? Content{} : AnswerContent(exchange));
  object["answer_bytes"] = answer.length;
  object["answer_cut"] = answer.IsCut();
  const std::optional<Block> block = exchange.IsData() ? BlockOf(answer) : std::nullopt;
  if (!block) return;
  object["points"] = block->points;
  if (block->status) object["block_status"] = *block->status;
}

Json JsonOf(const std::optional<Summary::Slowest>& slowest) {
  if (!slowest) return nullptr;
  return {{"seconds", Seconds(slowest->time)},
          {"title", slowest->title},
          {"line", slowest->line},
          {"time", TimeText(slowest->begin)}};
}

}  // namespace

void JsonReport::Tell(const Exchange& exchange) {
  Json object{{"type", "exchange"},
              {"line", exchange.line},
              {"time", TimeText(exchange.begin)},
              {"process", exchange.process},
              {"session", exchange.session}};
  if (exchange.request) {
    const simulator::Message& request = exchange.request->message;
    object["number"] = request.sequence;
    object["command"] = simulator::NameOfCommand(request.command);
    if (const auto parameter = simulator::ParameterOf(request)) {
      object["parameter"] = *parameter;
      object["name"] = simulator::NameOfParameter(*parameter);
    }
    object["request"] = JsonOf(RequestContent(exchange));
    object["request_cut"] = exchange.request->IsCut();
  }
  if (exchange.answer) AddAnswer(exchange, object);
  if (exchange.end) object["seconds"] = Seconds(*exchange.end - exchange.begin);
  if (!exchange.open_end.empty()) object["open"] = exchange.open_end;
  object["problems"] = JsonOf(exchange.remarks);
  Put(LineOf(object));
}

void JsonReport::Tell(const Call& call) {
  Json values = Json::object();
  for (const auto& [key, value] : call.made.values) values[key] = value;
  Put(LineOf({{"type", "call"},
              {"line", call.line},
              {"time", TimeText(call.made.time)},
              {"process", call.made.process},
              {"session", call.made.session ? Json(*call.made.session) : Json()},
              {"call", call.made.call},
              {"status", call.made.status},
              {"seconds", Seconds(call.made.duration)},
              {"values", std::move(values)},
              {"problems", JsonOf(call.remarks)}}));
}

void JsonReport::TellDamaged(std::size_t line, const std::string& why) {
  Put(LineOf({{"type", "damaged"}, {"file", name()}, {"line", line}, {"why", why}}));
}

void JsonReport::OnReplaced() { Put(LineOf({{"type", "replaced"}, {"file", name()}})); }

void JsonReport::End() {
  Json commands = Json::object();
  for (const auto& [command, count] : summary().Commands()) {
    Json& sum = commands[std::string(simulator::NameOfCommand(command))];
    sum = sum.is_null() ? count : sum.get<std::size_t>() + count;
  }
  Json problems = Json::object();
  for (std::size_t i = 0; i < kProblems; ++i) {
    const auto problem = static_cast<Problem>(i);
    problems[std::string(NameOf(problem))] = summary().Of(problem);
  }
  Put(LineOf({{"type", "summary"},
              {"exchanges", summary().Exchanges()},
              {"commands", std::move(commands)},
              {"failures", summary().Failures()},
              {"problems", std::move(problems)},
              {"left_open", summary().LeftOpen()},
              {"clears", summary().Clears()},
              {"damaged", summary().Damaged()},
              {"slowest_setting", JsonOf(summary().SlowestSetting())},
              {"slowest_block", JsonOf(summary().SlowestBlock())}}));
}

}  // namespace iotrace
