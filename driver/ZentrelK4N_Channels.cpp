// IZentrelK4NChannels, the fixed collection of the three channels, and the loading of their
// detector files.
#include <array>
#include <filesystem>
#include <string>

#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"
#include "measurement/DetectorFile.h"
#include "platform/os/Files.h"

using namespace driver;

namespace {

namespace fs = std::filesystem;

const IID& kChannels = __uuidof(IZentrelK4NChannels);
const IID& kChannel = __uuidof(IZentrelK4NChannel);

constexpr std::array<os::WideView, measurement::kTraceChannels> kNames{
    OLESTR("ChannelA"), OLESTR("ChannelB"), OLESTR("ChannelR")};

/// A client's name for a detector file, converted to two code pages in the order in which they are
/// tried: the calling thread's, and Windows-1251, because the maker's files have Russian names. A
/// name with letters that a code page lacks is not tried there; if both lack them, the file is not
/// found even if it exists. The process locale is not switched: that would affect the client's
/// other threads.
struct FileNames {
  explicit FileNames(os::WideView name)
      : ansi(os::PathOf(name, os::ThreadAnsiCodePage())),
        cyrillic(os::PathOf(name, os::kCyrillicCodePage)) {}

  fs::path ansi;
  fs::path cyrillic;
};

}  // namespace

STDMETHODIMP CZentrelK4N::get_Count(LONG* value) {
  return Frame({value}, [&] {
    *value = static_cast<LONG>(kNames.size());
    return S_OK;
  });
}

// Kept: the text in the client's variable is freed, so the variable must hold a BSTR or null.
// Without memory for the new text it is left unchanged.
STDMETHODIMP CZentrelK4N::get_Name(LONG index, BSTR* name) {
  return Frame({name}, [&]() -> HRESULT {
    if (index < 1 || index > static_cast<LONG>(kNames.size())) {
      return BuiltError(kChannels, Status::kInvalidValue, std::to_string(index), "Index", "Name");
    }
    const BSTR text = NewBstr(kNames[static_cast<std::size_t>(index) - 1]);
    SysFreeString(*name);
    *name = text;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Item(BSTR name, IZentrelK4NChannel** item) {
  return Frame({item}, [&]() -> HRESULT {
    *item = nullptr;
    for (std::size_t channel = 0; channel < kNames.size(); ++channel) {
      if (ViewOf(name) == kNames[channel] && channels_[channel]) {
        return channels_[channel]->QueryInterface(kChannel, reinterpret_cast<void**>(item));
      }
    }
    return BuiltError(kChannels, Status::kUnknownChannelName);
  });
}

// Kept: a file that is found only by the second form of its name counts as loaded, whatever its
// content.
HRESULT CZentrelK4N::LoadDetectorDataFromFile(std::size_t channel, os::WideView file_name) {
  return SessionFrame(kChannel, [&]() -> HRESULT {
    const FileNames names(file_name);
    const Status loaded = manager_.LoadDetectorData(channel, names.ansi);
    if (loaded == Status::kMethodNotSupported) {
      return BuiltError(kChannel, loaded, "LoadDetectorDataFromFile");
    }
    if (loaded == Status::kOk) return S_OK;
    if (loaded != Status::kCannotOpenFile) {
      return BuiltError(kChannel, Status::kCannotReadFile, file_name);
    }
    if (manager_.LoadDetectorData(channel, names.cyrillic) != Status::kCannotOpenFile) return S_OK;
    return LoadFromDetectorFolder(channel, file_name);
  });
}

HRESULT CZentrelK4N::LoadFromDetectorFolder(std::size_t channel, os::WideView file_name) {
  const FileNames names(file_name);
  for (const fs::path& folder : measurement::GetDetectorFolders()) {
    // If the name cannot be converted, the path is only the folder, which is not a file.
    Status loaded = manager_.LoadDetectorData(channel, fs::path(folder) += names.ansi);
    if (loaded == Status::kCannotOpenFile) {
      loaded = manager_.LoadDetectorData(channel, fs::path(folder) += names.cyrillic);
    }
    if (loaded == Status::kOk) return S_OK;
    if (loaded != Status::kCannotOpenFile) {
      return BuiltError(kChannel, Status::kCannotReadFile, os::WideOf(folder).append(file_name));
    }
  }
  return BuiltError(kChannel, Status::kCannotOpenFile, file_name);
}
