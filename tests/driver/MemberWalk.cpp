#include "tests/driver/MemberWalk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "driver/ZentrelK4N.h"
#include "platform/os/Text.h"

namespace driver_test {

namespace {

using members::Type;

std::string NameOf(const members::Interface& entry, const members::Member& member) {
  constexpr std::string_view kPrefix = "IZentrelK4N";
  std::string name(entry.name == kPrefix             ? "Root"
                   : entry.name.starts_with(kPrefix) ? entry.name.substr(kPrefix.size())
                                                     : entry.name);
  name += member.kind == members::Kind::kGet ? ".get " : ".";
  if (member.kind == members::Kind::kPut) name += "put ";
  return name.append(member.name);
}

members::Value ValueOf(Type type, double number) {
  switch (type) {
    case Type::kDouble:
      return number;
    case Type::kBool:
      return static_cast<VARIANT_BOOL>(number);
    case Type::kText:
      return Text("ChannelA");
    case Type::kArray:
      return members::Unset{};
    default:
      return static_cast<LONG>(number);
  }
}

std::string TextOf(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.12g", number);
  return text;
}
std::string TextOf(const Bstr& text) { return os::ToNarrow(text.View(), os::kUtf8CodePage); }
std::string TextOf(const SafeArrayOwner& /*array*/) { return "array"; }
std::string TextOf(const ComPtr<IUnknown>& object) { return object ? "object" : "no object"; }
std::string TextOf(members::Unset /*value*/) { return {}; }
std::string TextOf(members::NullReference /*value*/) { return {}; }

}  // namespace

bool Walked::IsWay() const {
  return !member->parameters.empty() && member->parameters.back().type == Type::kInterface;
}

bool Walked::IsSupported() const {
  const HRESULT result = Call(Surface(), *this).result;
  TakeErrorInfo();
  return result != kMethodCode && result != kPropertyCode;
}

const std::vector<Walked>& AllMembers() {
  static const std::vector<Walked> all = [] {
    std::vector<Walked> list;
    for (const auto& entry : members::Interfaces()) {
      for (const auto& member : entry.members) {
        list.push_back({NameOf(entry, member), &entry, &member});
      }
    }
    return list;
  }();
  return all;
}

const Walked& MemberOf(std::string_view name) {
  const auto found = std::ranges::find(AllMembers(), name, &Walked::name);
  if (found == AllMembers().end()) throw std::out_of_range(std::string(name));
  return *found;
}

const std::vector<ClassRow>& Classes() {
  static const std::vector<ClassRow> rows = {
      {__uuidof(ZentrelK4N),
       {__uuidof(IZentrelK4N), __uuidof(IProvideClassInfo), __uuidof(IProvideClassInfo2),
        __uuidof(ISupportErrorInfo), __uuidof(IIviDriverIdentity), __uuidof(IIviDriverOperation),
        __uuidof(IIviDriverUtility), __uuidof(IIviComponentIdentity), __uuidof(IZentrelK4NRF),
        __uuidof(IZentrelK4NSweep), __uuidof(IZentrelK4NFrequencyStep),
        __uuidof(IZentrelK4NChannels), __uuidof(IZentrelK4NList), __uuidof(IZentrelK4NAcquisition),
        __uuidof(IZentrelK4NSystem), __uuidof(IErrorTrail)}},
      {__uuidof(ZentrelK4NChannel), {__uuidof(IZentrelK4NChannel)}},
      {__uuidof(ZentrelK4NPowerStep), {__uuidof(IZentrelK4NPowerStep)}},
      {__uuidof(ZentrelK4NPulseGenerator), {__uuidof(IZentrelK4NPulseGenerator)}},
      {__uuidof(ZentrelK4NPulseGeneratorOutput), {__uuidof(IZentrelK4NPulseGeneratorOutput)}},
      {__uuidof(ZentrelK4NPulseGeneratorDouble), {__uuidof(IZentrelK4NPulseGeneratorDouble)}},
      {__uuidof(ZentrelK4NPulsePacketGenerator), {__uuidof(IZentrelK4NPulsePacketGenerator)}},
      {__uuidof(ZentrelK4NPulseModulation), {__uuidof(IZentrelK4NPulseModulation)}},
      {__uuidof(ZentrelK4NTriggerOutput), {__uuidof(IZentrelK4NTriggerOutput)}},
      {__uuidof(ZentrelK4NSyncGenerator), {__uuidof(IZentrelK4NSyncGenerator)}},
  };
  return rows;
}

ComPtr<IUnknown> ObjectOf(const Surface& surface, const IID& iid) {
  ComPtr<IUnknown> found;
  for (IUnknown* object : std::initializer_list<IUnknown*>{
           surface.root.Get(), surface.power_step.Get(), surface.trigger_output.Get(),
           surface.pulse_generator.Get(), surface.pulse_double.Get(), surface.pulse_output.Get(),
           surface.packet.Get(), surface.pulse_modulation.Get(), surface.channel.Get(),
           surface.sync_generator.Get()}) {
    if (object->QueryInterface(iid, found.PutVoid()) == S_OK) break;
  }
  return found;
}

Answer Call(const Surface& surface, const Walked& walked, std::span<const double> numbers,
            std::optional<std::size_t> null_out) {
  std::vector<members::Argument> arguments;
  for (const auto& parameter : walked.member->parameters) {
    auto& argument = arguments.emplace_back();
    if (null_out == arguments.size() - 1) argument.value = members::NullReference{};
    if (parameter.IsOut()) continue;
    argument.value = ValueOf(parameter.type, numbers.empty() ? 1.0 : numbers.front());
    if (!numbers.empty()) numbers = numbers.subspan(1);
  }
  const auto object = ObjectOf(surface, walked.interface_entry->id);
  Answer answer{walked.member->Call(object.Get(), arguments), {}};
  for (const auto& argument : arguments) {
    if (!argument.written) continue;
    answer.written.push_back(
        std::visit([](const auto& value) { return TextOf(value); }, argument.value));
  }
  return answer;
}

double NumberOf(const Surface& surface, std::string_view get) {
  const Answer answer = Call(surface, MemberOf(get));
  EXPECT_EQ(answer.result, S_OK) << get;
  return answer.written.size() == 1 ? std::stod(answer.written.front()) : std::nan("");
}

}  // namespace driver_test
