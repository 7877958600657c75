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

constexpr std::array<os::WideView, k4n::kChannelCount> kNames{
    OLESTR("ChannelA"), OLESTR("ChannelB"), OLESTR("ChannelR")};

/// A client's name for a detector file as it reads in two code pages, in the order in which they
/// are tried: the calling thread's, and Windows-1251, as the maker's files carry Russian names. A
/// name with letters that a page lacks is no file's name there: with letters that both lack it is
/// not found even where the system has such a file. The locale of the process has no part in it: a
/// switch would reach the client's other threads.
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

// Kept: the text that the client's variable holds is freed, so that it must be a text or null. A
// client out of memory keeps it.
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

// Kept: whatever stands in a file that only the second reading of its name finds, it is taken for
// loaded.
HRESULT CZentrelK4N::LoadDetectorDataFromFile(std::size_t channel, os::WideView file_name) {
  return SessionFrame(kChannel, [&]() -> HRESULT {
    const FileNames names(file_name);
    const Status loaded = manager_.LoadDetectorData(channel, names.ansi);
    if (loaded == Status::kMethodNotSupported) {
      return BuiltError(kChannel, loaded, "LoadDetectorDataFromFile");
    }
    if (loaded == Status::kOk) {
      return S_OK;
    }
    if (loaded != Status::kCannotOpenFile) {
      return BuiltError(kChannel, Status::kCannotReadFile, file_name);
    }
    if (manager_.LoadDetectorData(channel, names.cyrillic) != Status::kCannotOpenFile) {
      return S_OK;
    }
    return LoadFromDetectorFolder(channel, file_name);
  });
}

HRESULT CZentrelK4N::LoadFromDetectorFolder(std::size_t channel, os::WideView file_name) {
  const FileNames names(file_name);
  for (const fs::path& folder : measurement::GetDetectorFolders()) {
    // A name that a code page has no letters for leaves the folder alone, which is no file.
    Status loaded = manager_.LoadDetectorData(channel, fs::path(folder) += names.ansi);
    if (loaded == Status::kCannotOpenFile) {
      loaded = manager_.LoadDetectorData(channel, fs::path(folder) += names.cyrillic);
    }
    if (loaded == Status::kOk) {
      return S_OK;
    }
    if (loaded != Status::kCannotOpenFile) {
      return BuiltError(kChannel, Status::kCannotReadFile, os::WideOf(folder).append(file_name));
    }
  }
  return BuiltError(kChannel, Status::kCannotOpenFile, file_name);
}
