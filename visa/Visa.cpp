// The entry points around a session: managers, names, opening and closing, attributes, locks,
// events.
#include "visa/Visa.h"

#include "visa/EntryPoint.h"
#include "visa/ResourceName.h"
#include "visa/Settings.h"
#include "visa/StatusText.h"

namespace {

using zevisa::Give;
using zevisa::GiveText;
using zevisa::Objects;
using zevisa::Session;
using zevisa::TellAttribute;
using zevisa::TextOf;
using zevisa::Traced;
using zevisa::TraceLine;
using zevisa::WithoutExceptions;
using zevisa::WithSession;

constexpr ViUInt32 kDefaultOpenTimeout = 2000;  // ms, for 0

/// The one answer that a function of events has for any object.
ViStatus OfEvents(const char* call, ViObject object, ViStatus answer) noexcept {
  return Traced(call, object, [&] {
    const bool is_object =
        Objects::Instance().FindSession(object) || Objects::Instance().FindManager(object);
    return is_object ? answer : VI_ERROR_INV_OBJECT;
  });
}

/// What the settings file says now, told through a manager.
ViStatus GetOfSettings(ViAttr attribute, void* value) {
  const zevisa::FoundSettings settings = zevisa::LoadSettings({});
  const std::size_t problem = attribute - VI_ATTR_ZENTREL_SETTINGS_PROBLEM;
  const bool is_file = attribute == VI_ATTR_ZENTREL_SETTINGS_FILE;
  if (!is_file && problem >= settings.problems.size()) return VI_ERROR_NSUP_ATTR;
  if (value == nullptr) return VI_ERROR_USER_BUF;
  const std::string& text = is_file ? settings.file : settings.problems[problem];
  GiveText(static_cast<char*>(value), text.substr(0, VI_FIND_BUFLEN - 1));
  return VI_SUCCESS;
}

bool IsOfSettings(ViAttr attribute) {
  constexpr ViAttr kIndex = 0xFFF;
  return attribute == VI_ATTR_ZENTREL_SETTINGS_FILE ||
         (attribute & ~kIndex) == VI_ATTR_ZENTREL_SETTINGS_PROBLEM;
}

template <typename Use>
ViStatus ParseFor(ViSession manager, const char* name, const Use& use) {
  if (!Objects::Instance().FindManager(manager)) return VI_ERROR_INV_OBJECT;
  const auto parsed = zevisa::ParseResourceName(TextOf(name));
  return parsed ? use(*parsed) : VI_ERROR_INV_RSRC_NAME;
}

ViStatus Parse(const char* call, ViSession manager, const char* name, ViUInt16* interface_type,
               ViUInt16* interface_number, char* resource_class, char* expanded_name,
               char* alias) noexcept {
  const auto give = [&](const zevisa::ResourceName& parsed) {
    Give(interface_type, VI_INTF_TCPIP);
    Give(interface_number, parsed.board);
    GiveText(resource_class, "SOCKET");
    GiveText(expanded_name, parsed.Canonical());
    GiveText(alias, "");
    return VI_SUCCESS;
  };
  return Traced(
      call, manager, [&] { return ParseFor(manager, name, give); },
      [&](TraceLine& line) { line.Text("resource", TextOf(name)); });
}

/// One viOpen. Its settings decide whether it is traced, so it reads them before the line is due.
class Opening {
 public:
  Opening(ViSession manager, const char* name, ViAccessMode mode, ViUInt32 timeout)
      : manager_(manager), name_(name), mode_(mode), timeout_(timeout) {}

  ViStatus Run(ViSession& session) {
    return ParseFor(manager_, name_, [&](const zevisa::ResourceName& parsed) {
      const ViAccessMode lock = mode_ & ~VI_LOAD_CONFIG;
      if (lock > VI_SHARED_LOCK) return VI_ERROR_INV_ACC_MODE;
      // Without a file, or with one that makes no sense, the defaults are what was loaded: clients
      // count every status but the plain success as a failure.
      if (lock != mode_) settings_ = zevisa::LoadSettings(parsed.Canonical());
      trace_ = zevisa::TraceFor(settings_);
      const ViSession number = Objects::Instance().NewNumber();
      const auto opened = std::make_shared<Session>(number, manager_, settings_, trace_);
      const ViStatus status =
          opened->Open(parsed, lock, timeout_ == 0 ? kDefaultOpenTimeout : timeout_);
      if (status != VI_SUCCESS) return status;
      if (!Objects::Instance().AddSession(number, opened)) return VI_ERROR_INV_OBJECT;
      session = number;
      return VI_SUCCESS;
    });
  }

  void Tell(TraceLine& line, ViSession session) const {
    line.Text("resource", TextOf(name_));
    line.Number("mode", mode_);
    line.Number("timeout", timeout_);
    line.Number("opened", session);
    if (settings_.file.empty()) return;
    line.Text("config", settings_.file);
    if (!settings_.section.empty()) line.Text("section", settings_.section);
  }

  /// The lines of the settings file that make no sense, behind the call's own.
  void NoteProblems(ViSession session) const noexcept {
    for (const std::string& problem : settings_.problems) {
      zevisa::WriteNote(trace_, session, settings_.file, problem);
    }
  }

  [[nodiscard]] const zevisa::Trace& trace() const { return trace_; }

 private:
  const ViSession manager_;
  const char* const name_;
  const ViAccessMode mode_;
  const ViUInt32 timeout_;
  zevisa::FoundSettings settings_;
  zevisa::Trace trace_ = zevisa::TraceOf(0);
};

}  // namespace

extern "C" {

ViStatus viOpenDefaultRM(ViSession* manager) {
  zevisa::FollowEnvironment();
  return Traced(
      __func__, 0,
      [&] {
        if (manager == nullptr) return VI_ERROR_USER_BUF;
        *manager = Objects::Instance().AddManager();
        return VI_SUCCESS;
      },
      [&](TraceLine& line) {
        if (line.IsGood()) line.Number("opened", *manager);
      });
}

ViStatus viParseRsrc(ViSession manager, const char* name, ViUInt16* interface_type,
                     ViUInt16* interface_number) {
  return Parse(__func__, manager, name, interface_type, interface_number, nullptr, nullptr,
               nullptr);
}

ViStatus viParseRsrcEx(ViSession manager, const char* name, ViUInt16* interface_type,
                       ViUInt16* interface_number, char* resource_class, char* expanded_name,
                       char* alias) {
  return Parse(__func__, manager, name, interface_type, interface_number, resource_class,
               expanded_name, alias);
}

ViStatus viOpen(ViSession manager, const char* name, ViAccessMode mode, ViUInt32 timeout,
                ViSession* session) {
  Opening opening(manager, name, mode, timeout);
  ViSession opened = 0;
  TraceLine line(__func__, manager);
  const ViStatus status = WithoutExceptions(
      [&] { return session == nullptr ? VI_ERROR_USER_BUF : opening.Run(opened); });
  Give(session, opened);
  zevisa::WriteLine(opening.trace(), line, status,
                    [&](TraceLine& own) { opening.Tell(own, opened); });
  opening.NoteProblems(opened);
  return status;
}

ViStatus viFindRsrc(ViSession manager, const char* expression, ViFindList* list, ViUInt32* count,
                    char* description) {
  return Traced(
      __func__, manager,
      [&] {
        if (!Objects::Instance().FindManager(manager)) return VI_ERROR_INV_OBJECT;
        Give(list, ViFindList{0});
        Give(count, ViUInt32{0});
        GiveText(description, "");
        return VI_ERROR_RSRC_NFOUND;  // raw sockets cannot be searched for
      },
      [&](TraceLine& line) { line.Text("expression", TextOf(expression)); });
}

// No search ever has a second result.
ViStatus viFindNext(ViFindList list, char* description) {
  return Traced(__func__, list, [&] {
    GiveText(description, "");
    return VI_ERROR_RSRC_NFOUND;
  });
}

ViStatus viClose(ViObject object) {
  return Traced(__func__, object, [&] {
    if (object == 0) return VI_WARN_NULL_OBJECT;
    return Objects::Instance().Close(object) ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
  });
}

ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value) {
  return Traced(
      __func__, object,
      [&] {
        if (const auto session = Objects::Instance().FindSession(object)) {
          return session->SetAttribute(attribute, value);
        }
        const auto manager = Objects::Instance().FindManager(object);
        return manager ? manager->Set(attribute, value) : VI_ERROR_INV_OBJECT;
      },
      [&](TraceLine& line) {
        TellAttribute(line, attribute);
        line.Number("value", value);
      });
}

ViStatus viGetAttribute(ViObject object, ViAttr attribute, void* value) {
  return Traced(
      __func__, object,
      [&] {
        if (const auto session = Objects::Instance().FindSession(object)) {
          return session->GetAttribute(attribute, value);
        }
        const auto manager = Objects::Instance().FindManager(object);
        if (!manager) return VI_ERROR_INV_OBJECT;
        return IsOfSettings(attribute) ? GetOfSettings(attribute, value)
                                       : manager->Get(attribute, value);
      },
      [&](TraceLine& line) { TellAttribute(line, attribute, value); });
}

// A text needs no session: clients ask after a failed open too.
ViStatus viStatusDesc(ViObject object, ViStatus status, char* description) {
  return Traced(
      __func__, object,
      [&] {
        if (description == nullptr) return VI_ERROR_USER_BUF;
        const std::string_view text = zevisa::StatusText(status);
        if (!text.empty()) {
          std::memcpy(description, text.data(), text.size() + 1);
          return VI_SUCCESS;
        }
        GiveText(description,
                 "Unknown status " + zevisa::HexadecimalNumber(static_cast<std::uint32_t>(status)));
        return VI_WARN_UNKNOWN_STATUS;
      },
      [&](TraceLine& line) { line.Name("code", zevisa::StatusName(status)); });
}

ViStatus viLock(ViSession number, ViAccessMode type, ViUInt32 timeout, const char* requested_key,
                char* access_key) {
  return WithSession(
      __func__, number,
      [&](Session& session) {
        if (type != VI_EXCLUSIVE_LOCK && type != VI_SHARED_LOCK) return VI_ERROR_INV_LOCK_TYPE;
        std::string key = TextOf(requested_key);
        if (key.size() >= VI_FIND_BUFLEN) return VI_ERROR_INV_ACCESS_KEY;
        const ViStatus status = session.Lock(type, timeout, key);
        if (status >= 0 && type == VI_SHARED_LOCK) GiveText(access_key, key);
        return status;
      },
      [&](TraceLine& line) {
        line.Number("type", type);
        line.Number("timeout", timeout);
      });
}

ViStatus viUnlock(ViSession number) {
  return WithSession(__func__, number, [](Session& session) { return session.Unlock(); });
}

// A raw socket has no events. Clients disable and discard all of them when they close.
ViStatus viEnableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/,
                       ViEventFilter /*context*/) {
  return OfEvents(__func__, session, VI_ERROR_INV_EVENT);
}

ViStatus viDisableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/) {
  return OfEvents(__func__, session, VI_SUCCESS_EVENT_DIS);
}

ViStatus viDiscardEvents(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/) {
  return OfEvents(__func__, session, VI_SUCCESS_QUEUE_EMPTY);
}

}  // extern "C"
