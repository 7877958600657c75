// A file of known content for the life of a test.
#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "tests/platform/TemporaryFolder.h"

class TempFile {
 public:
  explicit TempFile(std::string_view content = {}) {
    std::ofstream(Path(), std::ios::binary) << content;
  }

  [[nodiscard]] std::string Path() const { return (folder_.path() / "test.det").string(); }
  [[nodiscard]] std::string Content() const {
    std::ifstream file(Path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  TemporaryFolder folder_;
};
