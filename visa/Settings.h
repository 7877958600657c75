// The settings file: what a person changes about the library without a new build of anything.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "visa/Visa.h"

namespace zevisa {

/// What holds for one session; as here where the file says nothing.
struct Settings {
  bool keep_alive = false;
  std::uint32_t keep_alive_idle = 30;     ///< seconds without a sign of the peer before a probe
  std::uint32_t keep_alive_interval = 5;  ///< seconds between the probes
  std::uint32_t keep_alive_probes = 3;    ///< unanswered ones, after which the connection is lost
  bool no_delay = true;
  std::uint32_t connect_ceiling = VI_TMO_INFINITE;  ///< milliseconds for one address
  std::uint32_t read_ceiling = VI_TMO_INFINITE;     ///< milliseconds that one read waits
  std::string trace;                                ///< the file, UTF-8; empty for none
  std::uint32_t trace_data = 1024;                  ///< bytes of a transfer that a line shows
  std::uint32_t trace_size = 16384;                 ///< KiB, after which the file is put aside
};

/// A settings file as it is for one session. Texts are UTF-8.
struct FoundSettings {
  Settings values;
  std::string file;     ///< empty when there is none
  std::string section;  ///< the pattern that the session's name matches; empty when none does
  /// What makes no sense, "line 3: no such key: colour"; each fits a client's buffer. The last one
  /// only counts when there are many.
  std::vector<std::string> problems;
};

/// Reads a file's text for the session of this canonical name. The first section whose pattern
/// matches it is in force, alone; a line that makes no sense changes nothing.
FoundSettings ReadSettings(std::string_view text, std::string_view resource);

/// Reads the file that is in force now: the one that ZEVISA_CONFIG names, else the user's, else the
/// machine's, zentrel/zevisa.ini in the system's folders of settings.
FoundSettings LoadSettings(std::string_view resource);

}  // namespace zevisa
