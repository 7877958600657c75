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
      library_->Bind(os::ThisModuleFolder() / "ZeVISA.dll") == VisaLibrary::kNotLoaded) {
    last_status_.store(Status::kVisaLibraryNotFound);
    return;
  }
  OpenSession();
}

Interface::~Interface() { library_->viClose(session_); }

void Interface::OpenSession() {
  if (Note(library_->viOpenDefaultRM(&resource_manager_)) != Status::kOk) return;
  if (Note(library_->viOpen(resource_manager_, resource_name_.c_str(), kAccessMode, kOpenTimeout,
                            &session_)) != Status::kOk) {
    return;
  }
  Discard(Note(library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{kIoTimeout})));
}

Status Interface::Note(ViStatus status) {
  last_status_.store(Status{status});
  return Status{status};
}

Status Interface::Read(std::span<std::uint8_t> buffer, std::uint32_t& count) {
  count = 0;
  const Status read = Note(
      library_->viRead(session_, buffer.data(), static_cast<std::uint32_t>(buffer.size()), &count));
  return !IsNegative(read) ? Note(VI_SUCCESS) : read;
}

Status Interface::Write(std::span<const std::uint8_t> bytes, std::uint32_t& count) {
  count = 0;
  return Note(
      library_->viWrite(session_, bytes.data(), static_cast<std::uint32_t>(bytes.size()), &count));
}

Status Interface::ReadWithTimeout(std::span<std::uint8_t> buffer, std::uint32_t& count) {
  count = 0;
  ViUInt32 saved_timeout = 0;
  Status result = Note(library_->viGetAttribute(session_, VI_ATTR_TMO_VALUE, &saved_timeout));
  if (IsNegative(result)) return result;
  result = Note(library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{kBodyTimeout}));
  if (IsNegative(result)) return result;
  result = Note(
      library_->viRead(session_, buffer.data(), static_cast<std::uint32_t>(buffer.size()), &count));
  if (IsNegative(result)) return result;
  return Note(library_->viSetAttribute(session_, VI_ATTR_TMO_VALUE, ViAttrState{saved_timeout}));
}

Status Interface::Clear() { return Note(library_->viClear(session_)); }

std::string Interface::StatusDescription(Status code) {
  std::array<char, 257> buffer{};  // VISA promises at most 256 characters
  // The status is ignored: a library gives a text for an unknown status, too.
  Discard(Note(library_->viStatusDesc(session_, ToCode(code), buffer.data())));
  buffer.back() = '\0';
  return buffer.data();
}

}  // namespace uDevice
