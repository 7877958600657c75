#include "zk4n/DetectorCheck.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <utility>

#include "status/HresultName.h"
#include "zk4n/Arguments.h"
#include "zk4n/Quantity.h"

namespace zk4n {
namespace {

using nlohmann::ordered_json;

constexpr std::string_view kNoDirection = "in no order";

std::string_view DirectionOf(const std::vector<double>& axis) {
  if (std::is_sorted(axis.begin(), axis.end())) return "ascending";
  return std::is_sorted(axis.begin(), axis.end(), std::greater<>()) ? "descending" : kNoDirection;
}

bool IsMonotonic(const std::vector<double>& axis) { return DirectionOf(axis) != kNoDirection; }

std::string AxisText(const std::vector<double>& axis, const std::string& unit) {
  constexpr int kDigits = 10;
  if (axis.empty()) return "none";
  if (axis.size() == 1) return FormatNumber(axis.front(), kDigits) + unit + ", one point";
  return FormatNumber(axis.front(), kDigits) + " to " + FormatNumber(axis.back(), kDigits) + unit +
         ", " + std::string(DirectionOf(axis)) + ", " + std::to_string(axis.size()) + " points";
}

}  // namespace

std::string FaultText(const measurement::DetectorFile& file) {
  using Fault = measurement::DetectorFile::Fault;
  switch (file.ReadFault()) {
    case Fault::kNone:
      return "";
    case Fault::kCannotOpen:
      return "it cannot be opened";
    case Fault::kNoNumbers:
      return file.Text().HasContent() ? "it holds no numbers" : "it is empty, or larger than 1 GiB";
    case Fault::kUnevenRows:
      return "data line " + std::to_string(file.Text().UnevenRow()) +
             " has another count of numbers than the first one";
    case Fault::kUnknownVersion:
      return "only the versions 0 and 3 are known";
    case Fault::kNoDigest:
      return "the digest line (#CRC) is missing";
    case Fault::kWrongDigest:
      return "the stored digest is not that of the content";
    case Fault::kDataBehindDigest:
      return "data lines follow the digest line";
  }
  return "";
}

DetectorCheck::DetectorCheck(std::string file) : name_(std::move(file)) {
  file_.Read(PathArgument(name_));
  if (!file_.HasTable()) return;
  CSimpleMatrix matrix;
  Discard(file_.Fill(matrix));  // there is a table
  for (std::uint32_t c = 1; c < matrix.GetCols(); ++c) frequencies_.push_back(matrix.GetItem(c, 0));
  for (std::uint32_t r = 1; r < matrix.GetRows(); ++r) levels_.push_back(matrix.GetItem(0, r));
}

bool DetectorCheck::IsGood() const {
  return file_.ReadStatus() == Status::kOk && AxisFault().empty();
}

std::string DetectorCheck::AxisFault() const {
  if (frequencies_.empty() || levels_.empty()) return "the table has no frequency or no level";
  if (!IsMonotonic(frequencies_)) return "the frequencies neither ascend nor descend";
  if (!IsMonotonic(levels_)) return "the levels neither ascend nor descend";
  if (std::min(levels_.front(), levels_.back()) < 0.0) return "there are levels below 0";
  return "";
}

std::string DetectorCheck::AsText() const {
  const measurement::MatrixText& text = file_.Text();
  const Status status = file_.ReadStatus();
  std::ostringstream lines;
  lines << name_ << ": ";
  if (IsGood()) {
    lines << "good\n";
  } else {
    lines << "NOT GOOD: " << (status == Status::kOk ? AxisFault() : FaultText(file_)) << '\n';
  }
  lines << "  status     " << HresultText(ToCode(status)) << " (" << HresultName(ToCode(status))
        << ")\n";
  if (!text.HasContent()) return lines.str();
  lines << "  version    " << (file_.Version() ? std::to_string(*file_.Version()) : "none") << '\n'
        << "  table      " << text.Columns() << " columns, " << text.Rows() << " rows\n";
  if (file_.HasTable()) {
    lines << "  frequency  " << AxisText(frequencies_, " MHz") << '\n'
          << "  level      " << AxisText(levels_, "")
          << (file_.Version() == measurement::kVersionWithoutLevels ? ", not in the file\n" : "\n");
  }
  lines << "  digest     " << text.ComputedDigest() << '\n'
        << "  stored     " << (text.HasDigest() ? text.StoredDigest() : "none") << '\n';
  return lines.str();
}

std::string DetectorCheck::AsJson() const {
  const measurement::MatrixText& text = file_.Text();
  ordered_json object{{"file", name_}, {"status", HresultText(ToCode(file_.ReadStatus()))}};
  const auto add = [&object](const char* key, bool is_there, const auto& value) {
    object[key] = is_there ? ordered_json(value) : ordered_json(nullptr);
  };
  add("version", file_.Version().has_value(), file_.Version().value_or(0));
  add("columns", text.Columns() != 0 && text.UnevenRow() == 0, text.Columns());
  add("rows", text.Rows() != 0, text.Rows());
  add("digest", text.HasContent(), text.ComputedDigest());
  add("stored", text.HasDigest(), text.StoredDigest());
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace zk4n
