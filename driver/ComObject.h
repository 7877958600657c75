// IUnknown for every COM class of the driver: interface map, reference count, aggregation, module
// lock, and the way into the call log.
#pragma once

#include <atomic>
#include <utility>

#include "K4NHardWare/CallLog.h"
#include "driver/LoggedInterfaces.h"
#include "driver/ModuleLock.h"
#include "platform/com/Com.h"

namespace driver {

/// The interfaces that a class answers, in look-up order.
template <typename First, typename... Others>
struct InterfaceList {
  /// The object's interface for the identifier, without a reference; null when it has none.
  template <typename Class>
  static IUnknown* Find(Class* object, REFIID iid) {
    IUnknown* found = nullptr;
    static_cast<void>(Answers<First>(object, iid, found) ||
                      (Answers<Others>(object, iid, found) || ...));
    return found;
  }

  /// The object's identity: the first entry.
  template <typename Class>
  static IUnknown* Identity(Class* object) {
    return static_cast<First*>(object);
  }

 private:
  template <typename Interface, typename Class>
  static bool Answers(Class* object, REFIID iid, IUnknown*& found) {
    if (!IsEqualGUID(iid, __uuidof(Interface))) return false;
    found = static_cast<Interface*>(object);
    return true;
  }
};

/// A living object of a COM class. `Class` names its interfaces (`Class::Interfaces`), builds what
/// it owns in FinalConstruct and gives it up in FinalRelease. An outer object that aggregates this
/// one gets the inner IUnknown, and every interface of this object then belongs to the outer one's
/// identity.
template <typename Class>
class ComObject final : public Class {
 public:
  /// A new object with one reference, which the caller releases through Unknown(). Throws what the
  /// class throws.
  static ComObject* Create(IUnknown* outer = nullptr) {
    auto* const object = new ComObject(outer);
    try {
      object->FinalConstruct();
    } catch (...) {
      delete object;
      throw;
    }
    return object;
  }

  /// The object's own IUnknown: never the outer object's.
  IUnknown& Unknown() { return inner_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    return controlling_->QueryInterface(iid, out);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return controlling_->AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return controlling_->Release(); }

 private:
  class Inner final : public IUnknown {
   public:
    explicit Inner(ComObject& object) : object_(object) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
      if (out == nullptr) return E_POINTER;
      IUnknown* const found = IsEqualGUID(iid, __uuidof(IUnknown))
                                  ? object_.Identity()
                                  : Class::Interfaces::Find(&object_, iid);
      *out = found;
      if (found == nullptr) return E_NOINTERFACE;
      found->AddRef();
      if (call_log::IsOn()) *out = Logged(iid, found, object_.Identity());
      return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }

    STDMETHODIMP_(ULONG) Release() override {
      const ULONG left = --references_;
      if (left == 0) object_.Destroy();
      return left;
    }

    /// While an object goes, references taken and given back must not bring it down a second time.
    void Pin() { references_ = kPinned; }

   private:
    static constexpr ULONG kPinned = 0x40000000;

    ComObject& object_;
    std::atomic<ULONG> references_ = 1;
  };

  explicit ComObject(IUnknown* outer)
      : inner_(*this), controlling_(outer == nullptr ? &inner_ : outer) {
    module_lock::Add();
  }
  ~ComObject() { module_lock::Remove(); }

  IUnknown* Identity() {
    return controlling_ == &inner_ ? Class::Interfaces::Identity(this) : &inner_;
  }

  void Destroy() {
    inner_.Pin();
    this->FinalRelease();
    delete this;
  }

  Inner inner_;
  IUnknown* const controlling_;
};

}  // namespace driver
