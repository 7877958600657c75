#include "zk4n/VisaProbe.h"

#include <array>
#include <type_traits>

#include "platform/os/Text.h"
#include "status/HresultName.h"
#include "zk4n/Arguments.h"

namespace zk4n {
namespace {

constexpr ViUInt32 kOpenTimeout = 2000;  // milliseconds, as the driver's

}  // namespace

bool VisaProbe::Load(const std::string& driver_file) {
  const std::string folder = driver_file.substr(0, driver_file.find_last_of("/\\") + 1);
  return (module_.Load("zevisa64.dll") || module_.Load("zevisa.dll") ||
          module_.Load(PathArgument(folder + "ZeVISA.dll"))) &&
         Bind();
}

bool VisaProbe::Bind() {
  const auto find = [this](auto& function, const char* name) {
    function =
        module_.FunctionOf<std::remove_pointer_t<std::remove_reference_t<decltype(function)>>>(
            name);
    return function != nullptr;
  };
  return find(open_manager_, "viOpenDefaultRM") && find(open_, "viOpen") &&
         find(close_, "viClose") && find(get_attribute_, "viGetAttribute") &&
         find(lock_, "viLock") && find(unlock_, "viUnlock") && find(describe_, "viStatusDesc");
}

std::string VisaProbe::File() const { return os::ToNarrow(module_.File(), os::kUtf8CodePage); }

ViStatus VisaProbe::OpenManager() { return manager_ != 0 ? VI_SUCCESS : open_manager_(&manager_); }

// The attributes of settings and of the lock's owner are our own library's; others answer that they
// do not know them.
std::optional<std::string> VisaProbe::TextOf(ViObject object, ViAttr attribute) const {
  std::array<char, VI_FIND_BUFLEN> text{};
  if (get_attribute_(object, attribute, text.data()) < 0) return std::nullopt;
  return text.data();
}

std::optional<std::string> VisaProbe::SettingsFile() {
  OpenManager();
  return TextOf(manager_, VI_ATTR_ZENTREL_SETTINGS_FILE);
}

std::vector<std::string> VisaProbe::SettingsProblems() {
  constexpr ViAttr kFirst = VI_ATTR_ZENTREL_SETTINGS_PROBLEM;
  constexpr ViAttr kMost = 100;  // more than our library tells of
  std::vector<std::string> problems;
  for (ViAttr next = kFirst; next < kFirst + kMost; ++next) {
    auto problem = TextOf(manager_, next);
    if (!problem) break;
    problems.push_back(*std::move(problem));
  }
  return problems;
}

ViStatus VisaProbe::Open(const std::string& resource) {
  const ViStatus opened = OpenManager();
  return opened < 0 ? opened
                    : open_(manager_, resource.c_str(), VI_LOAD_CONFIG, kOpenTimeout, &session_);
}

std::string VisaProbe::SettingsSection() const {
  return TextOf(session_, VI_ATTR_ZENTREL_SETTINGS_SECTION).value_or("");
}

ViStatus VisaProbe::TryLock() {
  const ViStatus locked = lock_(session_, VI_EXCLUSIVE_LOCK, VI_TMO_IMMEDIATE, nullptr, nullptr);
  if (locked >= 0) unlock_(session_);
  return locked;
}

std::string VisaProbe::LockOwner() const {
  return TextOf(session_, VI_ATTR_ZENTREL_LOCK_OWNER).value_or("");
}

std::string VisaProbe::Describe(ViStatus status) const {
  std::array<char, VI_FIND_BUFLEN> text{};
  describe_(manager_, status, text.data());
  return HresultText(status) + " (" + text.data() + ")";
}

void VisaProbe::Close() {
  if (session_ != 0) close_(session_);
  if (manager_ != 0) close_(manager_);
  session_ = manager_ = 0;
  module_.Unload();
}

}  // namespace zk4n
