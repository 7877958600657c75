// What every member of every COM class goes through: the boundary that no exception passes, the
// null test of out pointers, error information, and the members that only say that they are not
// supported.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <new>
#include <string_view>
#include <utility>

#include "platform/com/Com.h"
#include "platform/os/Text.h"
#include "status/Status.h"

namespace driver {

/// Runs a member's body: a failed allocation is E_OUTOFMEMORY, any other exception E_FAIL. The body
/// returns an HRESULT or a status of the manager, which reaches the client unchanged: instrument
/// notices 1 to 6 and 10057 therefore arrive as success codes.
template <typename Body>
HRESULT Frame(Body&& body) noexcept {
  try {
    return static_cast<HRESULT>(std::forward<Body>(body)());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

/// The out pointers of a member. A null pointer is refused before anything else is tested.
using OutPointers = std::initializer_list<const void*>;

constexpr bool AreGiven(OutPointers out) {
  return std::find(out.begin(), out.end(), nullptr) == out.end();
}

/// The same for a member with out pointers: E_POINTER when one is null.
template <typename Body>
HRESULT Frame(OutPointers out, Body&& body) noexcept {
  return AreGiven(out) ? Frame(std::forward<Body>(body)) : E_POINTER;
}

/// The name of an interface, which clients read in error texts.
template <typename Interface>
constexpr std::string_view InterfaceName() {
  std::string_view name = __PRETTY_FUNCTION__;  // "... Interface = Name;..." or "...= Name]"
  name.remove_prefix(name.find("Interface = ") + 12);
  return name.substr(0, name.find_first_of(";]"));
}

/// Kept: several members read 1 for true, the others VARIANT_TRUE. A VBA client that compares with
/// True sees the difference.
constexpr VARIANT_BOOL BoolAsOne(bool value) { return value ? 1 : 0; }
constexpr VARIANT_BOOL BoolAsTrue(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

/// Base of every COM class of the driver: error reporting under the class's own identity. Its
/// operations may be called from any thread; error information belongs to the calling thread.
class CallFrame {
 public:
  CallFrame(const CallFrame&) = delete;
  CallFrame& operator=(const CallFrame&) = delete;

  /// Sets the thread's error information (interface, the class's ProgID if it is registered, text)
  /// and returns the code.
  HRESULT Error(std::string_view text, REFIID iid, Status code) const;

  /// Error with the text of the code's template, the library's name in front.
  HRESULT BuiltError(REFIID iid, Status code, std::string_view insert_1 = {},
                     std::string_view insert_2 = {}, std::string_view insert_3 = {}) const;

  /// The same with a text of the client, which is wide: it comes back unchanged, with letters that
  /// the code page lacks.
  HRESULT BuiltError(REFIID iid, Status code, os::WideView insert) const;

  /// The whole answer of a member that is not supported, given its name ("get_Property" or
  /// "Method", as __func__ gives it): 0x80047012 for a property, 0x80047011 for a method.
  HRESULT NotSupported(std::string_view member, REFIID iid) const noexcept;

  /// The whole body of a property that hands out an interface of `target` (null when that object
  /// could not be made). A failed query is reported as 0x80047012 with the wanted interface's name,
  /// against the interface that declares the property.
  template <typename Interface>
  HRESULT Getter(IUnknown* target, REFIID declaring, Interface** out) const noexcept {
    return GetInterface(target, __uuidof(Interface), declaring, InterfaceName<Interface>(),
                        reinterpret_cast<void**>(out));
  }

 protected:
  explicit CallFrame(const CLSID& class_id) : class_id_(class_id) {}
  ~CallFrame() = default;

 private:
  HRESULT WideError(os::WideString text, REFIID iid, Status code) const;
  HRESULT GetInterface(IUnknown* target, REFIID wanted, REFIID declaring,
                       std::string_view wanted_name, void** out) const noexcept;

  const CLSID class_id_;
};

}  // namespace driver
