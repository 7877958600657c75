// The entry points around a session: managers, names, opening and closing, attributes, locks,
// events.
#include "visa/Visa.h"

#include <cstdio>

#include "visa/EntryPoint.h"
#include "visa/ResourceName.h"
#include "visa/Settings.h"
#include "visa/StatusText.h"

namespace {

using zevisa::Give;
using zevisa::GiveText;
using zevisa::Guarded;
using zevisa::Objects;
using zevisa::Session;
using zevisa::WithSession;

constexpr ViUInt32 kDefaultOpenTimeout = 2000;  // ms, for 0

bool IsObject(ViObject object) {
  return Objects::Instance().FindSession(object) || Objects::Instance().FindManager(object);
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
ViStatus ParseFor(ViSession manager, const char* name, const Use& use) noexcept {
  return Guarded([&] {
    if (!Objects::Instance().FindManager(manager)) return VI_ERROR_INV_OBJECT;
    const auto parsed = zevisa::ParseResourceName(name == nullptr ? "" : name);
    return parsed ? use(*parsed) : VI_ERROR_INV_RSRC_NAME;
  });
}

}  // namespace

extern "C" {

ViStatus viOpenDefaultRM(ViSession* manager) {
  return Guarded([&] {
    if (manager == nullptr) return VI_ERROR_USER_BUF;
    *manager = Objects::Instance().AddManager();
    return VI_SUCCESS;
  });
}

ViStatus viParseRsrc(ViSession manager, const char* name, ViUInt16* interface_type,
                     ViUInt16* interface_number) {
  return viParseRsrcEx(manager, name, interface_type, interface_number, nullptr, nullptr, nullptr);
}

ViStatus viParseRsrcEx(ViSession manager, const char* name, ViUInt16* interface_type,
                       ViUInt16* interface_number, char* resource_class, char* expanded_name,
                       char* alias) {
  return ParseFor(manager, name, [&](const zevisa::ResourceName& parsed) {
    Give(interface_type, VI_INTF_TCPIP);
    Give(interface_number, parsed.board);
    GiveText(resource_class, "SOCKET");
    GiveText(expanded_name, parsed.Canonical());
    GiveText(alias, "");
    return VI_SUCCESS;
  });
}

ViStatus viOpen(ViSession manager, const char* name, ViAccessMode mode, ViUInt32 timeout,
                ViSession* session) {
  if (session == nullptr) return VI_ERROR_USER_BUF;
  *session = 0;
  return ParseFor(manager, name, [&](const zevisa::ResourceName& parsed) {
    const ViAccessMode lock = mode & ~VI_LOAD_CONFIG;
    if (lock > VI_SHARED_LOCK) return VI_ERROR_INV_ACC_MODE;
    // Without a file, or with one that makes no sense, the defaults are what was loaded: clients
    // count every status but the plain success as a failure.
    zevisa::FoundSettings settings;
    if ((mode & VI_LOAD_CONFIG) != 0) settings = zevisa::LoadSettings(parsed.Canonical());
    const ViSession number = Objects::Instance().NewNumber();
    const auto opened = std::make_shared<Session>(number, manager);
    const ViStatus status =
        opened->Open(parsed, lock, timeout == 0 ? kDefaultOpenTimeout : timeout, settings);
    if (status != VI_SUCCESS) return status;
    if (!Objects::Instance().AddSession(number, opened)) return VI_ERROR_INV_OBJECT;
    *session = number;
    return VI_SUCCESS;
  });
}

ViStatus viFindRsrc(ViSession manager, const char* /*expression*/, ViFindList* list,
                    ViUInt32* count, char* description) {
  return Guarded([&] {
    if (!Objects::Instance().FindManager(manager)) return VI_ERROR_INV_OBJECT;
    Give(list, ViFindList{0});
    Give(count, ViUInt32{0});
    GiveText(description, "");
    return VI_ERROR_RSRC_NFOUND;  // raw sockets cannot be searched for
  });
}

// No search ever has a second result.
ViStatus viFindNext(ViFindList /*list*/, char* description) {
  GiveText(description, "");
  return VI_ERROR_RSRC_NFOUND;
}

ViStatus viClose(ViObject object) {
  return Guarded([&] {
    if (object == 0) return VI_WARN_NULL_OBJECT;
    return Objects::Instance().Close(object) ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
  });
}

ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value) {
  return Guarded([&] {
    if (const auto session = Objects::Instance().FindSession(object)) {
      return session->SetAttribute(attribute, value);
    }
    const auto manager = Objects::Instance().FindManager(object);
    return manager ? manager->Set(attribute, value) : VI_ERROR_INV_OBJECT;
  });
}

ViStatus viGetAttribute(ViObject object, ViAttr attribute, void* value) {
  return Guarded([&] {
    if (const auto session = Objects::Instance().FindSession(object)) {
      return session->GetAttribute(attribute, value);
    }
    const auto manager = Objects::Instance().FindManager(object);
    if (!manager) return VI_ERROR_INV_OBJECT;
    return IsOfSettings(attribute) ? GetOfSettings(attribute, value)
                                   : manager->Get(attribute, value);
  });
}

// A text needs no session: clients ask after a failed open too.
ViStatus viStatusDesc(ViObject /*object*/, ViStatus status, char* description) {
  if (description == nullptr) return VI_ERROR_USER_BUF;
  const std::string_view text = zevisa::StatusText(status);
  if (!text.empty()) {
    std::memcpy(description, text.data(), text.size() + 1);
    return VI_SUCCESS;
  }
  std::snprintf(description, VI_FIND_BUFLEN, "Unknown status 0x%08X",
                static_cast<unsigned>(status));
  return VI_WARN_UNKNOWN_STATUS;
}

ViStatus viLock(ViSession number, ViAccessMode type, ViUInt32 timeout, const char* requested_key,
                char* access_key) {
  return WithSession(number, [&](Session& session) {
    if (type != VI_EXCLUSIVE_LOCK && type != VI_SHARED_LOCK) return VI_ERROR_INV_LOCK_TYPE;
    std::string key = requested_key == nullptr ? "" : requested_key;
    if (key.size() >= VI_FIND_BUFLEN) return VI_ERROR_INV_ACCESS_KEY;
    const ViStatus status = session.Lock(type, timeout, key);
    if (status >= 0 && type == VI_SHARED_LOCK) GiveText(access_key, key);
    return status;
  });
}

ViStatus viUnlock(ViSession number) {
  return WithSession(number, [](Session& session) { return session.Unlock(); });
}

// A raw socket has no events. Clients disable and discard all of them when they close.
ViStatus viEnableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/,
                       ViEventFilter /*context*/) {
  return Guarded([&] { return IsObject(session) ? VI_ERROR_INV_EVENT : VI_ERROR_INV_OBJECT; });
}

ViStatus viDisableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/) {
  return Guarded([&] { return IsObject(session) ? VI_SUCCESS_EVENT_DIS : VI_ERROR_INV_OBJECT; });
}

ViStatus viDiscardEvents(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/) {
  return Guarded([&] { return IsObject(session) ? VI_SUCCESS_QUEUE_EMPTY : VI_ERROR_INV_OBJECT; });
}

}  // extern "C"
