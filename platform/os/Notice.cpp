#include "platform/os/Notice.h"

#include <mutex>
#include <utility>

#include "platform/os/System.h"

namespace os {
namespace {

std::mutex hook_mutex;

NoticeHook& Hook() {
  static NoticeHook hook;
  return hook;
}

}  // namespace

void SetNoticeHook(NoticeHook hook) {
  const std::lock_guard lock(hook_mutex);
  Hook() = std::move(hook);
}

void ShowWarning(const std::string& text, const std::string& caption) {
  NoticeHook hook;
  {
    const std::lock_guard lock(hook_mutex);
    hook = Hook();
  }
  if (hook) {
    hook(text, caption);
  } else {
    system::ShowWarning(text, caption);
  }
}

}  // namespace os
