#include "zk4n/shell/Console.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

#include "server/interface/IErrorTrail.h"
#include "server/interface/IviInherent.h"
#include "zk4n/shell/Convert.h"

namespace shell {
namespace {

using members::Direction;
using members::Interface;
using members::Kind;
using members::Member;
using members::Parameter;
using members::Type;

/// Interfaces of the root object that no property leads to.
struct QueriedGroup {
  std::string_view name;
  IID iid;
};
const std::array kQueriedGroups{QueriedGroup{"Identity", __uuidof(IIviDriverIdentity)},
                                QueriedGroup{"Operation", __uuidof(IIviDriverOperation)}};

const Interface& RootInterface() { return members::Interfaces().front(); }

const Interface* GroupOf(const Member& member) {
  if (member.parameters.empty() || member.parameters.back().type != Type::kInterface)
    return nullptr;
  return members::FindInterface(member.parameters.back().interface_id);
}

const Member& FindMember(const Interface& group, const std::string& name, bool is_assigned) {
  const Member* const get = group.Find(name, Kind::kGet);
  const Member* const method = group.Find(name, Kind::kMethod);
  if (get == nullptr && method == nullptr) {
    throw Fault(std::string(group.name) + " has no member " + Excerpt(name));
  }
  if (!is_assigned) return get != nullptr ? *get : *method;
  const Member* const put = group.Find(name, Kind::kPut);
  if (put == nullptr) throw Fault(name + " cannot be set");
  return *put;
}

Target Follow(const Target& from, const Element& element, bool is_assigned) {
  if (from.group == nullptr) {
    throw Fault(std::string(from.member->name) + " has no member " + Excerpt(element.name) +
                ": it is no group");
  }
  if (from.group == &RootInterface()) {
    for (const QueriedGroup& queried : kQueriedGroups) {
      if (queried.name != element.name) continue;
      if (is_assigned) throw Fault(element.name + " cannot be set");
      if (!element.arguments.empty()) throw Fault(element.name + " takes no arguments");
      return {members::FindInterface(queried.iid), nullptr};
    }
  }
  const Member& member = FindMember(*from.group, element.name, is_assigned);
  return {GroupOf(member), &member};
}

/// What stands for an interface that comes out of QueryInterface.
const Parameter& ObjectParameter() {
  static const Parameter parameter = [] {
    Parameter object;
    object.direction = Direction::kRetval;
    object.type = Type::kInterface;
    object.type_name = "IUnknown";
    return object;
  }();
  return parameter;
}

std::optional<std::string> TextOf(const Bstr& text) {
  if (text.Get() == nullptr) return std::nullopt;
  return zk4n::DriverClient::Utf8(text);
}

/// The thread's error information, which it then has no longer.
std::optional<ErrorText> TakeError() {
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Put()) != S_OK || !info) return std::nullopt;
  ErrorText error;
  Bstr description;
  Bstr source;
  if (SUCCEEDED(info->GetDescription(description.Put()))) error.description = TextOf(description);
  if (SUCCEEDED(info->GetSource(source.Put()))) error.source = TextOf(source);
  static_cast<void>(info->GetGUID(&error.iid));
  return error;
}

void ClearError() { SetErrorInfo(0, nullptr); }

/// QueryInterface, as a call with its result.
Result QueryFor(IUnknown& object, REFIID iid, ComPtr<IUnknown>& found) {
  ClearError();
  ComPtr<IUnknown> queried;
  Result result;
  result.hresult = object.QueryInterface(iid, queried.PutVoid());
  // Whatever a failed query left there is no object.
  if (FAILED(result.hresult)) static_cast<void>(queried.Detach());
  found = queried;
  result.value = Output{&ObjectParameter(), std::move(queried)};
  result.error = TakeError();
  return result;
}

/// Moves what came out of a call into its result.
void TakeOutputs(const Member& member, std::vector<members::Argument>& arguments, Result& result) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    if (parameter.direction == Direction::kRetval) {
      result.value = Output{&parameter, std::move(arguments[i].value)};
    } else if (parameter.IsOut() || parameter.type == Type::kArray) {
      result.out.push_back({&parameter, std::move(arguments[i].value)});
    }
  }
}

constexpr std::string_view kHelp =
    "Path                  get a property, or call a method without arguments: RF.Frequency\n"
    "Path = value          set a property: RF.Frequency = 1e9\n"
    "Path(argument, ...)   call a method: RF.Configure(1e9, -10)\n"
    "new                   release the driver object and create a fresh one\n"
    "release               release the driver object\n"
    "query {IID}           ask the driver object for an interface\n"
    "[Path] supports {IID} whether an object gives error information for an interface\n"
    "trail                 every record of the driver's error trail; none is removed\n"
    "sleep MS              wait\n"
    "help [Path]           this, or the members of a group: help RF\n"
    "quit                  end\n"
    "Values: 1e9, 0x10, true, false, \"text\", null, [1, 2] or with a lower bound [1, 2]@1. A "
    "line\n"
    "that begins with # is a comment.";

std::string TypeText(const Parameter& parameter) {
  std::string text(parameter.type_name);
  if (!parameter.unit.empty()) text.append(" ").append(parameter.unit);
  return text;
}

/// "Level = double dBm" for a put, "Level: double dBm" for a get, and
/// "Configure(Frequency double Hz, PowerLevel double dBm)"; what may be left out is in brackets.
std::string Signature(const Member& member) {
  if (member.kind == Kind::kPut) {
    return std::string(member.name) + " = " + TypeText(member.parameters.front());
  }
  std::string list;
  std::string value;
  for (const Parameter& parameter : member.parameters) {
    if (parameter.direction == Direction::kRetval) {
      value = ": " + TypeText(parameter);
      continue;
    }
    const std::string text = std::string(parameter.name) + " " + TypeText(parameter);
    list += list.empty() ? "" : ", ";
    list += parameter.optional || parameter.IsOut() ? "[" + text + "]" : text;
  }
  const bool is_plain_get = member.kind == Kind::kGet && list.empty();
  return std::string(member.name) + (is_plain_get ? "" : "(" + list + ")") + value;
}

Result Help(const Command& command) {
  Result result;
  if (command.path.empty()) {
    result.text = kHelp;
    return result;
  }
  const Target target = FindTarget(command.path, false);
  if (target.group == nullptr) {
    result.text = Signature(*target.member);
    return result;
  }
  result.text = target.group->name;
  for (const Member& member : target.group->members) result.text += "\n  " + Signature(member);
  return result;
}

}  // namespace

struct Console::Step {
  const Interface* queried = nullptr;  ///< asked for by QueryInterface when there is no member
  const Member* member = nullptr;
  std::vector<members::Argument> arguments;
};

Console::Console(Create create) : create_(std::move(create)) { driver_.emplace(create_()); }

Result Console::Run(const Command& command) {
  switch (command.verb) {
    case Verb::kMember:
      return CallMember(command);
    case Verb::kNew:
      return New();
    case Verb::kRelease:
      return Release();
    case Verb::kQuery:
      return Query(command.iid);
    case Verb::kSupports:
      return Supports(command);
    case Verb::kTrail:
      return Trail();
    case Verb::kSleep:
      std::this_thread::sleep_for(command.time);
      return {};
    case Verb::kHelp:
      return Help(command);
    case Verb::kNothing:
    case Verb::kQuit:
      break;
  }
  return {};
}

IZentrelK4N* Console::Root() const {
  if (!driver_) throw Fault("there is no driver object: it was released, new creates one");
  return driver_->operator->();
}

std::vector<Console::Step> Console::Resolve(const Path& path,
                                            const std::optional<Literal>& assigned) {
  std::vector<Step> steps;
  Target target{&RootInterface(), nullptr};
  for (std::size_t i = 0; i < path.size(); ++i) {
    const bool is_put = assigned && i + 1 == path.size();
    target = Follow(target, path[i], is_put);
    Step& step = steps.emplace_back(Step{target.group, target.member, {}});
    if (step.member == nullptr) continue;
    if (is_put && !path[i].arguments.empty()) {
      throw Fault(path[i].name + " takes no arguments where it is set");
    }
    step.arguments = is_put ? ConvertAll(*step.member, {&*assigned, 1})
                            : ConvertAll(*step.member, path[i].arguments);
  }
  return steps;
}

/// Calls one after the other; each on the object that the one before gave, at last left in
/// `object`. The first that fails, or gives none where there is more to call, ends it.
Result Console::CallPath(std::vector<Step> steps, ComPtr<IUnknown>& object) const {
  object = ComPtr<IUnknown>(Root());
  Result result;
  for (Step& step : steps) {
    ComPtr<IUnknown> next;
    if (step.member == nullptr) {
      result = QueryFor(*object, step.queried->id, next);
    } else {
      result = {};
      ClearError();
      result.hresult = step.member->Call(object.Get(), step.arguments);
      result.error = TakeError();
      TakeOutputs(*step.member, step.arguments, result);
      const auto* const given =
          result.value ? std::get_if<ComPtr<IUnknown>>(&result.value->value) : nullptr;
      if (given != nullptr) next = *given;
    }
    object = next;
    if (FAILED(result.hresult) || !object) break;
  }
  return result;
}

Result Console::CallMember(const Command& command) const {
  ComPtr<IUnknown> object;
  return CallPath(Resolve(command.path, command.assigned), object);
}

Result Console::Supports(const Command& command) const {
  ComPtr<IUnknown> object;
  if (!command.path.empty() && FindTarget(command.path, false).group == nullptr) {
    throw Fault(command.path.back().name + " is no object");
  }
  Result reached = CallPath(Resolve(command.path, std::nullopt), object);
  if (FAILED(reached.hresult) || !object) return reached;
  ComPtr<IUnknown> found;
  Result result = QueryFor(*object, __uuidof(ISupportErrorInfo), found);
  result.value.reset();
  if (FAILED(result.hresult)) return result;
  ClearError();
  result.hresult =
      static_cast<ISupportErrorInfo*>(found.Get())->InterfaceSupportsErrorInfo(command.iid);
  result.error = TakeError();
  return result;
}

Result Console::Query(REFIID iid) const {
  ComPtr<IUnknown> found;
  return QueryFor(*Root(), iid, found);
}

/// Through an interface of our own: another driver's objects lack it.
Result Console::Trail() const {
  const auto trail = ComPtr<IUnknown>(Root()).As<IErrorTrail>();
  if (!trail) throw Fault("this driver does not show its error trail");
  Result result;
  result.trail.emplace();
  LONG status = 0;
  Bstr location;
  std::uint64_t count = 0;
  while (trail->GetRun(static_cast<ULONG>(result.trail->size()), &status, location.Put(), &count) ==
         S_OK) {
    result.trail->push_back(
        {static_cast<HRESULT>(status), zk4n::DriverClient::Utf8(location), count});
  }
  return result;
}

Result Console::New() {
  driver_.reset();
  try {
    driver_.emplace(create_());
  } catch (const zk4n::DriverError& error) {
    throw Fault(error.what());
  }
  return {};
}

Result Console::Release() {
  Root();
  driver_.reset();
  return {};
}

Target FindTarget(const Path& path, bool is_assigned) {
  Target target{&RootInterface(), nullptr};
  for (const Element& element : path) {
    target = Follow(target, element, is_assigned && &element == &path.back());
  }
  return target;
}

std::vector<std::string> NamesAfter(const Path& path) {
  std::vector<std::string> names;
  const auto add = [&names](std::string_view name, bool is_group) {
    names.push_back(std::string(name) + (is_group ? "." : ""));
  };
  try {
    const Target target = FindTarget(path, false);
    if (target.group == nullptr) return names;
    for (const Member& member : target.group->members) {
      add(member.name, GroupOf(member) != nullptr && member.parameters.size() == 1);
    }
    if (target.group == &RootInterface()) {
      for (const QueriedGroup& queried : kQueriedGroups) add(queried.name, true);
    }
  } catch (const Fault&) {
    return {};
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace shell
