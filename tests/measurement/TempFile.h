// A file of known content for the life of a test.
#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "tests/platform/Content.h"
#include "tests/platform/TemporaryFolder.h"

class TempFile {
 public:
  explicit TempFile(std::string_view content = {}) {
    std::ofstream(Path(), std::ios::binary) << content;
  }

  [[nodiscard]] std::string Path() const { return (folder_.path() / "test.det").string(); }
  [[nodiscard]] std::string Content() const { return ContentOf(Path()); }

 private:
  TemporaryFolder folder_;
};
