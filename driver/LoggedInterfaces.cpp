#include "driver/LoggedInterfaces.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <concepts>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "K4NHardWare/CallLog.h"
#include "platform/os/Text.h"
#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"
#include "status/HresultName.h"

namespace {

constexpr std::size_t kLongestText = 200;  // letters of a text that are shown

// --- How an argument is written

/// The name of an interface.
template <typename Interface>
constexpr std::string_view kNameOf{};

/// The name of an enumeration's value; empty when it has none.
template <typename Enumeration>
std::string_view ValueName(Enumeration value);

/// A real number with the fewest digits that give the same number again.
void AppendNumber(std::string& line, auto value, auto... base) {
  std::array<char, 32> digits{};
  char* const begin = digits.data();
  line.append(begin, std::to_chars(begin, begin + digits.size(), value, base...).ptr);
}

void Append(std::string& line, double value) { AppendNumber(line, value); }
void Append(std::string& line, LONG value) { AppendNumber(line, value); }

void Append(std::string& line, VARIANT_BOOL value) {
  if (value == VARIANT_TRUE) {
    line += "true";
  } else if (value == VARIANT_FALSE) {
    line += "false";
  } else {
    AppendNumber(line, value);
  }
}

template <typename Enumeration>
requires std::is_enum_v<Enumeration>
void Append(std::string& line, Enumeration value) {
  const std::string_view name = ValueName(value);
  name.empty() ? AppendNumber(line, static_cast<LONG>(value)) : void(line += name);
}

/// In quotes, as UTF-8; quotes, backslashes and control characters are escaped, so that a line
/// stays one. Members do not read every text that they are given, so that some clients pass what is
/// not a BSTR at all: nothing behind a zero is read, nor behind what is shown.
void Append(std::string& line, BSTR text) {
  if (text == nullptr) {
    line += "null";
    return;
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::size_t length =
      std::find(text, text + std::min<std::size_t>(SysStringLen(text), kLongestText), 0) - text;
  line += '"';
  for (const char byte : os::ToNarrow({text, length}, os::kUtf8CodePage)) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < ' ' || code == 0x7F) {
      line.append("\\x").append(1, kDigits[code >> 4U]).append(1, kDigits[code & 0xFU]);
    } else {
      if (byte == '"' || byte == '\\') line += '\\';
      line += byte;
    }
  }
  line += SysStringLen(text) > length ? "...\"" : "\"";
}

/// "5461 of double [0..5460]": the number of elements, their type, the bounds of each dimension.
void Append(std::string& line, SAFEARRAY* array) {
  if (array == nullptr) {
    line += "null";
    return;
  }
  std::string bounds;
  std::uint64_t count = 1;
  for (UINT dimension = 1; dimension <= SafeArrayGetDim(array); ++dimension) {
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, dimension, &lower);
    SafeArrayGetUBound(array, dimension, &upper);
    count *= static_cast<std::uint64_t>(std::int64_t{upper} - lower + 1);
    bounds.append("[")
        .append(std::to_string(lower))
        .append("..")
        .append(std::to_string(upper))
        .append("]");
  }
  VARTYPE type = VT_EMPTY;
  SafeArrayGetVartype(array, &type);
  line.append(std::to_string(count)).append(" of ");
  line.append(type == VT_R8 ? "double " : "type " + std::to_string(type) + " ");
  line.append(bounds);
}

template <std::derived_from<IUnknown> Interface>
void Append(std::string& line, Interface* value) {
  line += value == nullptr ? "null" : kNameOf<Interface>;
}

/// What is passed by reference.
template <typename T>
requires requires(std::string& line, T value) { Append(line, value); }
void Append(std::string& line, T* reference) {
  reference == nullptr ? void(line += "null") : Append(line, *reference);
}

/// An argument that a member reads, and one that it writes; the name is empty where there is but
/// one.
template <typename T>
struct In {
  std::string_view name;
  T value;
};
template <typename T>
struct Out {
  std::string_view name;
  T value;
};
template <typename T>
In(std::string_view, T) -> In<T>;
template <typename T>
Out(std::string_view, T) -> Out<T>;

void AppendArgument(std::string& line, std::string_view name, auto value) {
  if (line.back() != '(') line += ", ";
  if (!name.empty()) line.append(name).append("=");
  Append(line, value);
}

template <typename T>
void AppendIn(std::string& line, const In<T>& argument) {
  AppendArgument(line, argument.name, argument.value);
}
template <typename T>
void AppendIn(std::string& /*line*/, const Out<T>& /*argument*/) {}
template <typename T>
void AppendOut(std::string& line, const Out<T>& argument) {
  AppendArgument(line, argument.name, argument.value);
}
template <typename T>
void AppendOut(std::string& /*line*/, const In<T>& /*argument*/) {}

// --- A line about a call

/// "0x55d0c8a3e2b0 IZentrelK4NRF.put_Frequency("
std::string Beginning(const IUnknown* identity, std::string_view interface_name,
                      std::string_view member) {
  std::string line("0x");
  AppendNumber(line, reinterpret_cast<std::uintptr_t>(identity), 16);
  return line.append(" ").append(interface_name).append(".").append(member).append("(");
}

void AppendResult(std::string& line, HRESULT result) {
  line += " = ";
  if (result == S_OK) {
    line += "S_OK";
  } else {
    line.append(HresultText(result)).append(" (").append(HresultName(result)).append(")");
  }
}

// --- The classes before the interfaces

/// What they all do: hold a reference to the interface, answer for its object, and log a call.
template <typename Interface>
class Forwarder : public Interface {
 public:
  Forwarder(Interface* target, const IUnknown* identity) : target_(target), identity_(identity) {}
  Forwarder(const Forwarder&) = delete;
  Forwarder& operator=(const Forwarder&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** out) final {
    return target_->QueryInterface(iid, out);
  }
  STDMETHODIMP_(ULONG) AddRef() final { return ++references_; }
  STDMETHODIMP_(ULONG) Release() final {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Forwarder() { target_->Release(); }

  template <auto kMember, typename... Arguments>
  HRESULT Call(std::string_view member, const Arguments&... arguments) const noexcept {
    using Clock = std::chrono::steady_clock;
    std::string line;
    const bool has_begun = Try([&] {
      line = Beginning(identity_, kNameOf<Interface>, member);
      (AppendIn(line, arguments), ...);
      line += ')';
    });
    const auto begin = Clock::now();
    const HRESULT result = (target_->*kMember)(arguments.value...);
    const auto duration = Clock::now() - begin;
    if (!has_begun) return result;
    Try([&] {
      AppendResult(line, result);
      std::string outs(" (");
      if (result == S_OK) (AppendOut(outs, arguments), ...);
      if (outs.back() != '(') line.append(outs).append(")");
      using std::chrono::microseconds;
      const auto count = std::chrono::duration_cast<microseconds>(duration).count();
      call_log::Write(line.append(", ").append(std::to_string(count)).append(" us"));
    });
    return result;
  }

 private:
  /// The log has no part in a call: what there is no memory for is not told.
  static bool Try(auto&& body) noexcept {
    try {
      body();
      return true;
    } catch (...) {
      return false;
    }
  }

  Interface* const target_;
  const IUnknown* const identity_;
  std::atomic<ULONG> references_ = 1;
};

template <typename Interface>
class Logger;

template <typename Interface>
IUnknown* LoggerOf(IUnknown* target, const IUnknown* identity) {
  return new (std::nothrow) Logger<Interface>(static_cast<Interface*>(target), identity);
}

struct LoggedInterface {
  IID id;
  IUnknown* (*logger_of)(IUnknown* target, const IUnknown* identity);
};

#include "driver/LoggedInterfaces.inc"

}  // namespace

IUnknown* Logged(REFIID iid, IUnknown* target, const IUnknown* identity) noexcept {
  for (const LoggedInterface& known : kLoggedInterfaces) {
    if (!IsEqualGUID(known.id, iid)) continue;
    IUnknown* const logger = known.logger_of(target, identity);
    return logger == nullptr ? target : logger;
  }
  return target;
}
