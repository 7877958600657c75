// IZentrelK4NChannels, the fixed collection of the three channels, and the loading of their
// detector files.
#include <array>
#include <mutex>
#include <string>

#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"
#include "measurement/DetectorFile.h"
#include "platform/os/Files.h"

namespace {

const IID& kChannels = __uuidof(IZentrelK4NChannels);
const IID& kChannel = __uuidof(IZentrelK4NChannel);

constexpr std::array<os::WideView, kChannelCount> kNames{OLESTR("ChannelA"), OLESTR("ChannelB"),
                                                         OLESTR("ChannelR")};

// The locale is the whole process's: two loads must not switch it under each other.
std::mutex locale_lock;

}  // namespace

STDMETHODIMP CZentrelK4N::get_Count(LONG* value) {
  return Frame(value, [&] {
    *value = static_cast<LONG>(kNames.size());
    return S_OK;
  });
}

// Kept: the text that the client's variable holds is freed, so that it must be a text or null. A
// client out of memory keeps it.
STDMETHODIMP CZentrelK4N::get_Name(LONG index, BSTR* name) {
  return Frame(name, [&]() -> HRESULT {
    if (index < 1 || index > static_cast<LONG>(kNames.size())) {
      return BuiltError(kChannels, status::kInvalidValue, std::to_string(index), "Index", "Name");
    }
    const BSTR text = NewBstr(kNames[static_cast<std::size_t>(index) - 1]);
    SysFreeString(*name);
    *name = text;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Item(BSTR name, IZentrelK4NChannel** item) {
  return Frame(item, [&]() -> HRESULT {
    *item = nullptr;
    for (std::size_t channel = 0; channel < kNames.size(); ++channel) {
      if (ViewOf(name) == kNames[channel] && channels_[channel]) {
        return channels_[channel]->QueryInterface(kChannel, reinterpret_cast<void**>(item));
      }
    }
    return BuiltError(kChannels, status::kUnknownChannelName);
  });
}

HRESULT CZentrelK4N::LoadDetectorDataFromFile(std::size_t channel, os::WideView file_name) {
  return SessionFrame(kChannel, [&]() -> HRESULT {
    Status loaded =
        manager_.LoadDetectorData(channel, os::ToNarrow(file_name, os::FileNameCodePage()));
    if (loaded == status::kMethodNotSupported) {
      return BuiltError(kChannel, loaded, "LoadDetectorDataFromFile");
    }
    if (loaded == status::kOk) {
      return S_OK;
    }
    if (loaded != status::kCannotOpenFile) {
      return BuiltError(kChannel, status::kCannotReadFile, os::ToNarrow(file_name));
    }
    {
      const std::lock_guard lock(locale_lock);
      const os::LocaleSwitch russian("Russian");
      loaded = manager_.LoadDetectorData(channel, os::ToNarrow(file_name, os::FileNameCodePage()));
    }
    return loaded == status::kCannotOpenFile ? LoadFromDetectorFolder(channel, file_name) : S_OK;
  });
}

HRESULT CZentrelK4N::LoadFromDetectorFolder(std::size_t channel, os::WideView file_name) {
  const std::string name = os::ToNarrow(file_name);
  const std::string path = GetDetectorFolder() + name;
  const Status loaded = manager_.LoadDetectorData(channel, path);
  if (loaded == status::kOk) {
    return S_OK;
  }
  if (loaded == status::kCannotOpenFile) {
    return BuiltError(kChannel, loaded, name);
  }
  return BuiltError(kChannel, status::kCannotReadFile, path);
}
