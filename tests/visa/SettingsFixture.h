// Sessions that follow a settings file.
#pragma once

#include <filesystem>
#include <fstream>

#include "tests/platform/EnvironmentVariable.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/visa/VisaModule.h"

class VisaSettings : public VisaTest {
 protected:
  static void WriteFile(const std::filesystem::path& file, std::string_view text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  /// Opens as the driver does; exactly 0 is a success to it.
  ViSession OpenWith(std::string_view text) {
    WriteFile(file_, text);
    ViSession session = 0;
    EXPECT_STATUS(Open(peer.Name(), VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG, session), VI_SUCCESS)
        << text;
    return session;
  }
  std::vector<std::string> Problems() {
    std::vector<std::string> problems;
    for (ViAttr i = VI_ATTR_ZENTREL_SETTINGS_PROBLEM;; ++i) {
      std::array<char, 256> text{};
      if (visa.viGetAttribute(manager, i, text.data()) != VI_SUCCESS) return problems;
      problems.emplace_back(text.data());
    }
  }

  Peer peer;
  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "zevisa.ini";
  EnvironmentVariable variable_{"ZEVISA_CONFIG", file_};
};
