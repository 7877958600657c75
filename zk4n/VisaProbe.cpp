#include "zk4n/VisaProbe.h"

#include <array>
#include <type_traits>

#include "platform/os/Text.h"
#include "zk4n/Arguments.h"
#include "zk4n/HresultName.h"

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

ViStatus VisaProbe::Open(const std::string& resource) {
  const ViStatus opened = open_manager_(&manager_);
  return opened < 0 ? opened : open_(manager_, resource.c_str(), 0, kOpenTimeout, &session_);
}

ViStatus VisaProbe::TryLock() {
  const ViStatus locked = lock_(session_, VI_EXCLUSIVE_LOCK, VI_TMO_IMMEDIATE, nullptr, nullptr);
  if (locked >= 0) unlock_(session_);
  return locked;
}

// An attribute of our own library; others answer that they do not know it.
std::string VisaProbe::LockOwner() const {
  std::array<char, VI_FIND_BUFLEN> text{};
  return get_attribute_(session_, VI_ATTR_ZENTREL_LOCK_OWNER, text.data()) < 0 ? "" : text.data();
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
