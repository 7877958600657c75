// Owners of what COM hands out: interface pointers, texts, arrays.
#pragma once

#include <new>
#include <span>
#include <type_traits>
#include <utility>

#include "platform/com/Com.h"
#include "platform/os/Text.h"

static_assert(std::is_same_v<OLECHAR, os::WideChar>);

/// One reference to an object. Not for use by several threads at once.
template <typename T>
class ComPtr {
 public:
  ComPtr() = default;
  /// Takes a reference of its own.
  explicit ComPtr(T* pointer) : pointer_(pointer) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.pointer_) {}
  ComPtr(ComPtr&& other) noexcept : pointer_(other.Detach()) {}
  ~ComPtr() { Reset(); }
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }

  /// An owner of a reference that the caller already holds.
  static ComPtr Adopt(T* pointer) {
    ComPtr owner;
    owner.pointer_ = pointer;
    return owner;
  }

  /// Where a function leaves a new reference; what was held is released first.
  T** Put() {
    Reset();
    return &pointer_;
  }
  /// The same for functions that take an interface identifier beside it.
  void** PutVoid() { return reinterpret_cast<void**>(Put()); }

  /// Gives the reference to the caller.
  [[nodiscard]] T* Detach() { return std::exchange(pointer_, nullptr); }

  void Reset() {
    if (T* const held = std::exchange(pointer_, nullptr)) held->Release();
  }

  [[nodiscard]] T* Get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T& operator*() const { return *pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  /// Another interface of the object; null when it has none, or when nothing is held.
  template <typename Other>
  [[nodiscard]] ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (pointer_ != nullptr && FAILED(pointer_->QueryInterface(__uuidof(Other), other.PutVoid()))) {
      static_cast<void>(other.Detach());
    }
    return other;
  }

 private:
  T* pointer_ = nullptr;
};

/// One automation text. Null stands for empty text.
class Bstr {
 public:
  Bstr() = default;
  /// A copy of the text; throws std::bad_alloc.
  explicit Bstr(os::WideView text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  Bstr(Bstr&& other) noexcept : text_(other.Detach()) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~Bstr() { SysFreeString(text_); }

  /// Where a function leaves a new text; what was held is freed first.
  BSTR* Put() {
    SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }
  /// Gives the text to the caller.
  [[nodiscard]] BSTR Detach() { return std::exchange(text_, nullptr); }

  [[nodiscard]] BSTR Get() const { return text_; }
  [[nodiscard]] os::WideView View() const {
    return text_ == nullptr ? os::WideView() : os::WideView(text_, SysStringLen(text_));
  }

 private:
  BSTR text_ = nullptr;
};

/// One automation array, destroyed with its owner.
class SafeArrayOwner {
 public:
  explicit SafeArrayOwner(SAFEARRAY* array = nullptr) : array_(array) {}
  SafeArrayOwner(SafeArrayOwner&& other) noexcept : array_(other.Detach()) {}
  SafeArrayOwner& operator=(SafeArrayOwner&& other) noexcept {
    std::swap(array_, other.array_);
    return *this;
  }
  ~SafeArrayOwner() {
    if (array_ != nullptr) SafeArrayDestroy(array_);
  }

  /// Gives the array to the caller.
  [[nodiscard]] SAFEARRAY* Detach() { return std::exchange(array_, nullptr); }
  [[nodiscard]] SAFEARRAY* Get() const { return array_; }

 private:
  SAFEARRAY* array_;
};

/// The automation element type of a C++ type.
template <typename T>
inline constexpr VARTYPE kVarTypeOf = VT_EMPTY;
template <>
inline constexpr VARTYPE kVarTypeOf<double> = VT_R8;
template <>
inline constexpr VARTYPE kVarTypeOf<LONG> = VT_I4;

/// Locks a one-dimensional array of T for its life time. The array must outlive it.
template <typename T>
class SafeArrayAccess {
 public:
  explicit SafeArrayAccess(SAFEARRAY* array) : array_(array), result_(Lock()) {}
  ~SafeArrayAccess() {
    if (SUCCEEDED(result_)) SafeArrayUnaccessData(array_);
  }
  SafeArrayAccess(const SafeArrayAccess&) = delete;
  SafeArrayAccess& operator=(const SafeArrayAccess&) = delete;

  /// S_OK when the elements are there; E_INVALIDARG for a null array, DISP_E_TYPEMISMATCH for other
  /// elements, DISP_E_BADINDEX for other than one dimension, or what locking gave.
  [[nodiscard]] HRESULT Result() const { return result_; }

  /// All elements, whatever the lower bound; empty after a failure.
  [[nodiscard]] std::span<T> Values() const { return values_; }

 private:
  HRESULT Lock() {
    static_assert(kVarTypeOf<T> != VT_EMPTY);
    VARTYPE type = VT_EMPTY;
    if (array_ == nullptr) return E_INVALIDARG;
    if (FAILED(SafeArrayGetVartype(array_, &type)) || type != kVarTypeOf<T>) {
      return DISP_E_TYPEMISMATCH;
    }
    if (SafeArrayGetDim(array_) != 1) return DISP_E_BADINDEX;
    void* data = nullptr;
    const HRESULT locked = SafeArrayAccessData(array_, &data);
    if (SUCCEEDED(locked)) values_ = {static_cast<T*>(data), array_->rgsabound[0].cElements};
    return locked;
  }

  SAFEARRAY* array_;
  std::span<T> values_;
  HRESULT result_;
};
