// What the entry points share: each finds its object and hands over, no exception leaves, and the
// trace is told.
#pragma once

#include <cstring>
#include <new>
#include <string>

#include "visa/Objects.h"
#include "visa/Trace.h"
#include "visa/TraceLine.h"
#include "visa/Visa.h"

namespace zevisa {

template <typename Body>
ViStatus WithoutExceptions(const Body& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return VI_ERROR_ALLOC;
  } catch (...) {
    return VI_ERROR_SYSTEM_ERROR;
  }
}

/// Writes the line of a call that has ended, with what there is to tell about it. A line that
/// cannot be made is lost, and the call does not hear of it.
template <typename Tell>
void WriteLine(const Trace& trace, TraceLine& line, ViStatus status, const Tell& tell) noexcept {
  if (!trace.file) return;
  try {
    line.End(status);
    tell(line);
    trace.file->Write(line.Finish());
  } catch (...) {
  }
}

/// A note in the trace about the object.
inline void WriteNote(const Trace& trace, ViObject object, const std::string& about,
                      const std::string& what) noexcept {
  if (!trace.file) return;
  try {
    trace.file->Write(NoteLine(about + ": " + what, object));
  } catch (...) {
  }
}

inline constexpr auto kNothingMore = [](TraceLine& /*line*/) {};

/// A call with this object. While nothing is traced it pays one look at a flag.
template <typename Body, typename Tell = decltype(kNothingMore)>
ViStatus Traced(const char* call, ViObject object, const Body& body,
                const Tell& tell = kNothingMore) noexcept {
  if (!TraceFile::IsAny()) [[likely]] {
    return WithoutExceptions(body);
  }
  const Trace trace = TraceOf(object);
  TraceLine line(call, object, trace.data);
  const ViStatus status = WithoutExceptions(body);
  WriteLine(trace, line, status, tell);
  return status;
}

template <typename Body, typename Tell = decltype(kNothingMore)>
ViStatus WithSession(const char* call, ViSession number, const Body& body,
                     const Tell& tell = kNothingMore) noexcept {
  const auto find = [&] {
    const auto session = Objects::Instance().FindSession(number);
    return session ? body(*session) : VI_ERROR_INV_OBJECT;
  };
  return Traced(call, number, find, tell);
}

/// Stores a result that the client may have no use for.
template <typename Value>
void Give(Value* place, Value value) {
  if (place != nullptr) *place = value;
}

inline void GiveText(char* place, const std::string& text) {
  if (place != nullptr) std::memcpy(place, text.c_str(), text.size() + 1);
}

/// A text of the client's, who may have given none.
inline std::string TextOf(const char* text) { return text == nullptr ? "" : text; }

}  // namespace zevisa
