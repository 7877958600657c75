#include "zk4n/shell/Report.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <span>

#include "status/HresultName.h"
#include "zk4n/Quantity.h"

namespace shell {
namespace {

using Json = nlohmann::ordered_json;
using members::Type;
using members::Value;

constexpr std::size_t kShownElements = 8;
constexpr int kDigits = 12;

std::string NotFinite(double value) {
  if (std::isnan(value)) return "NaN";
  return value > 0 ? "Infinity" : "-Infinity";
}

Json NumberAsJson(double value) {
  return std::isfinite(value) ? Json(value) : Json(NotFinite(value));
}

std::string IidText(const IID& iid) {
  std::array<OLECHAR, 39> text{};
  StringFromGUID2(iid, text.data(), static_cast<int>(text.size()));
  return os::ToNarrow(os::WideView(text.data()), os::kUtf8CodePage);
}

/// One call for each kind of value that can have come out.
template <typename Visitor>
auto Visit(const Value& value, const Visitor& visitor) {
  if (const auto* number = std::get_if<LONG>(&value)) return visitor.Integer(*number);
  if (const auto* number = std::get_if<VARIANT_BOOL>(&value)) return visitor.Integer(*number);
  if (const auto* number = std::get_if<double>(&value)) return visitor.Real(*number);
  if (const auto* text = std::get_if<Bstr>(&value); text != nullptr && text->Get() != nullptr) {
    return visitor.Text(zk4n::DriverClient::Utf8(*text));
  }
  if (const auto* array = std::get_if<SafeArrayOwner>(&value)) {
    const SafeArrayAccess<double> access(array->Get());
    if (SUCCEEDED(access.Result())) return visitor.Elements(access.Values());
  }
  if (const auto* object = std::get_if<ComPtr<IUnknown>>(&value); object != nullptr && *object) {
    return visitor.Object();
  }
  return visitor.Null();
}

struct JsonVisitor {
  [[nodiscard]] Json Integer(std::int32_t value) const { return value; }
  [[nodiscard]] Json Real(double value) const { return NumberAsJson(value); }
  [[nodiscard]] Json Text(const std::string& text) const { return text; }
  [[nodiscard]] Json Object() const { return "object"; }
  [[nodiscard]] Json Null() const { return nullptr; }
  [[nodiscard]] Json Elements(std::span<const double> values) const {
    Json list = Json::array();
    for (const double value : values) list.push_back(NumberAsJson(value));
    return list;
  }
};

struct PlainVisitor {
  const members::Parameter& parameter;

  [[nodiscard]] std::string Integer(std::int32_t value) const {
    std::string text = std::to_string(value);
    if (parameter.type == Type::kBool) return (value != 0 ? "true (" : "false (") + text + ")";
    if (parameter.type == Type::kEnum) return text.append(" ").append(parameter.type_name);
    return WithUnit(text);
  }
  [[nodiscard]] std::string Real(double value) const {
    for (const zk4n::Unit unit : {zk4n::Unit::kHertz, zk4n::Unit::kDecibelMilliwatt,
                                  zk4n::Unit::kDecibel, zk4n::Unit::kSecond}) {
      if (zk4n::UnitSymbol(unit) == parameter.unit)
        return zk4n::FormatQuantity(value, unit, kDigits);
    }
    return WithUnit(zk4n::FormatNumber(value, kDigits));
  }
  [[nodiscard]] std::string Text(const std::string& text) const { return "\"" + text + "\""; }
  [[nodiscard]] std::string Object() const { return "object " + std::string(parameter.type_name); }
  [[nodiscard]] std::string Null() const { return "null"; }
  [[nodiscard]] std::string Elements(std::span<const double> values) const {
    std::string text = "[";
    for (const double value : values.first(std::min(values.size(), kShownElements))) {
      text += (text.size() > 1 ? ", " : "") + Real(value);
    }
    if (values.size() > kShownElements) text += ", ...";
    return text + "] (" + std::to_string(values.size()) + " values)";
  }

 private:
  [[nodiscard]] std::string WithUnit(std::string text) const {
    if (!parameter.unit.empty()) text.append(" ").append(parameter.unit);
    return text;
  }
};

/// Texts that the driver or the user wrote may hold anything.
std::string Dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json OrNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

/// Whether the driver keeps a record of such a failure for ErrorQuery: of what the instrument and
/// the VISA library refuse, not of what it refuses itself.
bool IsRecorded(HRESULT result) {
  constexpr std::uint32_t kInstrumentError = 0x80047001;
  constexpr std::uint32_t kVisa = 0xBFFF0000;
  constexpr std::uint32_t kInstrument = 0xFFFF8000;
  const auto bits = static_cast<std::uint32_t>(result);
  return bits == kInstrumentError || (bits & 0xFFFF0000) == kVisa || bits >= kInstrument;
}

/// A record of the error trail came out of the call.
bool IsTrailRecord(const Result& result) {
  if (result.out.empty() || result.out.front().parameter->name != "ErrorCode") return false;
  const auto* const code = std::get_if<LONG>(&result.out.front().value);
  return code != nullptr && *code != 0;
}

std::string WithName(HRESULT result) {
  return HresultText(result) + " (" + std::string(HresultName(result)) + ")";
}

std::string Outcome(const Result& result) {
  std::string text = WithName(result.hresult);
  if (result.error && result.error->description) text += ": " + *result.error->description;
  return text;
}

Json TrailAsJson(const std::vector<TrailRun>& trail) {
  Json records = Json::array();
  for (const TrailRun& run : trail) {
    records.push_back(Json{
        {"status", HresultText(run.status)}, {"location", run.location}, {"count", run.count}});
  }
  return records;
}

std::string TrailAsText(const std::vector<TrailRun>& trail) {
  std::string text;
  for (const TrailRun& run : trail) {
    text.append(text.empty() ? "" : "\n").append(WithName(run.status));
    text.append(", ").append(run.location);
    if (run.count > 1) text.append(", ").append(std::to_string(run.count)).append(" times");
  }
  return text.empty() ? "no records" : text;
}

}  // namespace

std::string ResultAsJson(std::string_view command, const Result& result) {
  Json out = Json::object();
  for (const Output& output : result.out) {
    out[std::string(output.parameter->name)] = Visit(output.value, JsonVisitor{});
  }
  Json value;
  if (result.value) value = Visit(result.value->value, JsonVisitor{});
  if (!result.text.empty()) value = result.text;
  Json error;
  if (result.error) {
    error = Json{{"description", OrNull(result.error->description)},
                 {"source", OrNull(result.error->source)},
                 {"iid", IidText(result.error->iid)}};
  }
  Json line{{"command", command},
            {"hresult", HresultText(result.hresult)},
            {"value", std::move(value)},
            {"out", std::move(out)},
            {"error", std::move(error)}};
  if (result.trail) line["records"] = TrailAsJson(*result.trail);
  return Dump(line);
}

std::string FaultAsJson(std::string_view command, std::string_view why) {
  return Dump(Json{{"command", command}, {"fault", why}});
}

std::string ResultAsText(const Result& result) {
  std::string text;
  const auto add = [&text](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
  if (result.hresult != S_OK) add(Outcome(result));
  if (SUCCEEDED(result.hresult) && result.value) {
    add(Visit(result.value->value, PlainVisitor{*result.value->parameter}));
  }
  for (const Output& output : result.out) {
    add(std::string(output.parameter->name) + " = " +
        Visit(output.value, PlainVisitor{*output.parameter}));
  }
  if (!result.text.empty()) add(result.text);
  if (result.trail) add(TrailAsText(*result.trail));
  if (IsRecorded(result.hresult))
    add("hint: Utility.ErrorQuery tells what the instrument reported");
  if (IsTrailRecord(result)) {
    const auto code = std::get<LONG>(result.out.front().value);
    add(WithName(code));
    add("hint: there may be more records; the last one is followed by the code 0");
  }
  return text.empty() ? "ok" : text;
}

}  // namespace shell
