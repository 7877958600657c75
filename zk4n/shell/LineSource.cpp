#include "zk4n/shell/LineSource.h"

namespace shell {
namespace {

class StreamLines final : public LineSource {
 public:
  explicit StreamLines(std::istream& stream) : stream_(stream) {}

  std::optional<std::string> Next() override {
    std::string line;
    if (!std::getline(stream_, line)) return std::nullopt;
    if (line.ends_with('\r')) line.pop_back();
    return line;
  }

 private:
  std::istream& stream_;
};

}  // namespace

std::unique_ptr<LineSource> LinesOf(std::istream& stream) {
  return std::make_unique<StreamLines>(stream);
}

}  // namespace shell
