// What the child objects of a root share.
#pragma once

#include <memory>
#include <new>
#include <utility>

#include "driver/CallFrame.h"
#include "driver/ComObject.h"
#include "driver/OwnerLink.h"
#include "driver/ZentrelK4N.h"
#include "platform/com/Com.h"
#include "platform/com/Raii.h"

namespace driver {

/// Base of a child class with its one interface. A child acts on the manager of its root. One
/// without a root (created by a client on its own, or kept after the root's last release) has no
/// instrument to act on and answers as if no session were open: 0x8004701D with its text.
template <typename Interface>
class Child : public CallFrame, public Interface, public ISupportErrorInfo {
 public:
  using Interfaces = InterfaceList<Interface, ISupportErrorInfo>;

  /// Called once, before any client can see the object.
  void SetOwner(std::shared_ptr<OwnerLink> owner) { owner_ = std::move(owner); }
  void FinalConstruct() {}
  void FinalRelease() {}

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override {
    return IsEqualGUID(iid, kInterface) ? S_OK : S_FALSE;
  }

 protected:
  explicit Child(const CLSID& class_id) : CallFrame(class_id) {}
  ~Child() = default;

  inline static const IID& kInterface = __uuidof(Interface);

  /// Frame for a member that acts on the root; the body takes it.
  template <typename Body>
  HRESULT RootFrame(Body&& body) const noexcept {
    return Frame([&]() -> HRESULT {
      if (owner_ != nullptr) {
        const OwnerLink::Lease lease(*owner_);
        if (lease.root() != nullptr) {
          return static_cast<HRESULT>(std::forward<Body>(body)(*lease.root()));
        }
      }
      return Error(kNotConnectedText, kInterface, Status::kNotConnected);
    });
  }

  /// Frame for a member that acts on the root's manager, with or without a session; the body takes
  /// the manager.
  template <typename Body>
  HRESULT ManagerFrame(Body&& body) const noexcept {
    return RootFrame([&](CZentrelK4N& root) { return std::forward<Body>(body)(root.manager()); });
  }
  /// The same for a member with out pointers.
  template <typename Body>
  HRESULT ManagerFrame(OutPointers out, Body&& body) const noexcept {
    return AreGiven(out) ? ManagerFrame(std::forward<Body>(body)) : E_POINTER;
  }

  /// Frame for a member that needs an open session; the body takes the manager.
  template <typename Body>
  HRESULT SessionFrame(Body&& body) const noexcept {
    return RootFrame([&](CZentrelK4N& root) {
      return root.SessionFrame(kInterface,
                               [&] { return std::forward<Body>(body)(root.manager()); });
    });
  }
  /// The same for a member with out pointers.
  template <typename Body>
  HRESULT SessionFrame(OutPointers out, Body&& body) const noexcept {
    return AreGiven(out) ? SessionFrame(std::forward<Body>(body)) : E_POINTER;
  }

 private:
  std::shared_ptr<OwnerLink> owner_;
};

/// Makes a child for the owner and puts its interface into `place`; without memory the place is
/// left empty.
template <typename Class, typename Interface, typename... Settings>
void CreateChild(const std::shared_ptr<OwnerLink>& owner, ComPtr<Interface>& place,
                 Settings... settings) {
  try {
    auto* const child = ComObject<Class>::Create();
    place = ComPtr<Interface>::Adopt(child);
    child->SetOwner(owner, settings...);
  } catch (const std::bad_alloc&) {
    place.Reset();
  }
}

}  // namespace driver
