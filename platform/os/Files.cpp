#include "platform/os/Files.h"

#include <algorithm>
#include <atomic>
#include <string_view>

#include "platform/os/System.h"

namespace os {

namespace {

/// The code page of the innermost LocaleSwitch; 0 while there is none.
std::atomic<CodePage> switched_code_page{0};

/// A locale of another name leaves file names as they were.
CodePage CodePageOfLocale(std::string_view locale_name) {
  if (locale_name == "Russian") return kCyrillicCodePage;
  return locale_name == "English" ? kWesternCodePage : FileNameCodePage();
}

}  // namespace

CodePage FileNameCodePage() {
  const CodePage switched = switched_code_page.load();
  return switched != 0 ? switched : ThreadAnsiCodePage();
}

LocaleSwitch::LocaleSwitch(const char* locale_name, const char* afterwards)
    : locale_afterwards_(system::SetLocale(locale_name)),
      previous_code_page_(switched_code_page.exchange(CodePageOfLocale(locale_name))) {
  if (afterwards != nullptr) locale_afterwards_ = afterwards;
}

LocaleSwitch::~LocaleSwitch() {
  if (!locale_afterwards_.empty()) system::SetLocale(locale_afterwards_.c_str());
  switched_code_page.store(previous_code_page_);
}

std::filesystem::path NativePath(std::string_view narrow_name) {
  WideString wide = ToWide(narrow_name, FileNameCodePage());
  constexpr auto kBackslash = static_cast<WideChar>('\\');
  std::replace(wide.begin(), wide.end(), kBackslash, static_cast<WideChar>('/'));
  return std::filesystem::path(wide).make_preferred();
}

std::ifstream OpenForReading(std::string_view narrow_name) {
  const std::filesystem::path path = NativePath(narrow_name);
  std::error_code error;
  // Some systems open a folder and fail only at the first read.
  if (std::filesystem::is_directory(path, error)) return {};
  return std::ifstream(path, std::ios::binary);
}

std::ofstream OpenForWriting(std::string_view narrow_name) {
  return std::ofstream(NativePath(narrow_name), std::ios::binary | std::ios::trunc);
}

}  // namespace os
