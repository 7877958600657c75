// A file of known content for the life of a test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

class TempFile {
 public:
  explicit TempFile(std::string_view content = {}) {
    static int count = 0;
    // Tests may run side by side: the test's own name keeps their files apart.
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string name =
        std::string(test.test_suite_name()) + "." + test.name() + "." + std::to_string(++count);
    for (char& c : name) c = c == '/' ? '_' : c;
    path_ = std::filesystem::temp_directory_path() / (name + ".det");
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  [[nodiscard]] std::string Path() const { return path_.string(); }
  [[nodiscard]] std::string Content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};
