#include "K4NHardWare/DeviceInterface.h"

#include <array>
#include <utility>

#include "K4NHardWare/VisaLibrary.h"

namespace uDevice {

namespace {

constexpr ViAccessMode kAccessMode = VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG;
constexpr std::uint32_t kOpenTimeout = 1000;  // ms, all of them
constexpr std::uint32_t kIoTimeout = 2000;
constexpr std::uint32_t kBodyTimeout = 1000;

}  // namespace

Interface::Interface(std::string resource_name)
    : library_(std::make_unique<VisaLibrary>()), resource_name_(std::move(resource_name)) {
  if (library_->Bind({}) == VisaLibrary::kNotLoaded &&
      library_->Bind(os::ThisModuleFolder() + "ZeVISA.dll") == VisaLibrary::kNotLoaded) {
    last_status_ = status::kVisaLibraryNotFound;
    return;
  }
  OpenSession();
}

Interface::~Interface() { library_->viClose(session_); }

void Interface::OpenSession() {
  last_status_ = library_->viOpenDefaultRM(&resource_manager_);
  if (last_status_ != 0) return;
  last_status_ = library_->viOpen(resource_manager_, resource_name_.c_str(), kAccessMode,
                                  kOpenTimeout, &session_);
  if (last_status_ != 0) return;
  last_status_ = library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{kIoTimeout});
}

Status Interface::Read(std::span<std::uint8_t> buffer, std::uint32_t& count) {
  count = 0;
  last_status_ =
      library_->viRead(session_, buffer.data(), static_cast<std::uint32_t>(buffer.size()), &count);
  return last_status_ >= 0 ? status::kOk : last_status_;
}

Status Interface::Write(std::span<const std::uint8_t> bytes, std::uint32_t& count) {
  count = 0;
  last_status_ =
      library_->viWrite(session_, bytes.data(), static_cast<std::uint32_t>(bytes.size()), &count);
  return last_status_;
}

Status Interface::ReadWithTimeout(std::span<std::uint8_t> buffer, std::uint32_t& count) {
  count = 0;
  ViUInt32 saved_timeout = 0;
  last_status_ = library_->viGetAttribute(session_, VI_ATTR_TMO_VALUE, &saved_timeout);
  if (last_status_ < 0) return last_status_;
  last_status_ = library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{kBodyTimeout});
  if (last_status_ < 0) return last_status_;
  last_status_ =
      library_->viRead(session_, buffer.data(), static_cast<std::uint32_t>(buffer.size()), &count);
  if (last_status_ < 0) return last_status_;
  last_status_ = library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{saved_timeout});
  return last_status_;
}

Status Interface::Clear() {
  last_status_ = library_->viClear(session_);
  return last_status_;
}

Status Interface::StatusDescription(Status code, std::string& text) {
  std::array<char, 257> buffer{};  // VISA promises at most 256 characters
  last_status_ = library_->viStatusDesc(session_, code, buffer.data());
  buffer.back() = '\0';
  text = buffer.data();
  return last_status_;
}

}  // namespace uDevice
