#include <windows.h>

#include <algorithm>
#include <array>
#include <new>

#include "platform/os/Sync.h"

namespace os {
namespace {

DWORD WaitTime(std::chrono::milliseconds timeout) {
  constexpr std::int64_t kLongest = INFINITE - 1;
  return static_cast<DWORD>(std::clamp<std::int64_t>(timeout.count(), 0, kLongest));
}

}  // namespace

struct Semaphore::Impl {
  HANDLE handle = CreateSemaphoreW(nullptr, 0, 1, nullptr);
  Impl() {
    if (handle == nullptr) throw std::bad_alloc();
  }
  ~Impl() { CloseHandle(handle); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
};

Semaphore::Semaphore() : impl_(std::make_unique<Impl>()) {}
Semaphore::~Semaphore() = default;

void Semaphore::Release() { ReleaseSemaphore(impl_->handle, 1, nullptr); }

bool Semaphore::TryAcquire() { return WaitForSingleObject(impl_->handle, 0) == WAIT_OBJECT_0; }

void Semaphore::Acquire() { WaitForSingleObject(impl_->handle, INFINITE); }

bool Semaphore::AcquireFor(std::chrono::milliseconds timeout) {
  return WaitForSingleObject(impl_->handle, WaitTime(timeout)) == WAIT_OBJECT_0;
}

std::optional<std::size_t> WaitAny(std::span<Semaphore* const> semaphores,
                                   std::chrono::milliseconds timeout) {
  std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles{};
  std::transform(semaphores.begin(), semaphores.end(), handles.begin(),
                 [](const Semaphore* semaphore) { return semaphore->impl_->handle; });
  const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(semaphores.size()), handles.data(),
                                              FALSE, WaitTime(timeout));
  if (result < WAIT_OBJECT_0 + semaphores.size()) return result - WAIT_OBJECT_0;
  return std::nullopt;
}

std::uint32_t TickCount() { return GetTickCount(); }

void Sleep(std::chrono::milliseconds duration) { ::Sleep(WaitTime(duration)); }

}  // namespace os
