// Settings of many values, which travel in blocks: fixed elements, the block's offset, its number
// of entries, the entries.
#include <algorithm>
#include <array>

#include "K4NHardWare/D3THardWare.h"

using namespace k4n;

namespace {

constexpr std::size_t kBlockBytes = 1006;  // of a list's elements in one message
constexpr std::size_t kPulsesPerBlock = 123;
constexpr std::size_t kBlockElements = 2;     // offset and number of entries
constexpr std::uint32_t kInternalSource = 3;  // codes of the pulse source on the wire
constexpr std::uint32_t kExternalSource = 2;

struct BlockFormat {
  std::uint16_t identifier;
  std::uint32_t element_size;
  std::uint32_t fractional_bytes;
  std::size_t elements_per_entry;
};

constexpr BlockFormat kFrequencyList = {2, 6, 0, 1};
constexpr BlockFormat kPowerList = {76, 4, 2, 1};
constexpr BlockFormat kPulseTrain = {31, 4, 0, 2};

/// A block without its entries.
HardWareParametr MakeBlock(const BlockFormat& format, std::span<const double> fixed,
                           std::size_t offset, std::size_t entries) {
  const std::size_t elements = fixed.size() + kBlockElements + entries * format.elements_per_entry;
  HardWareParametr block({.identifier = format.identifier,
                          .element_count = static_cast<std::uint32_t>(elements),
                          .element_size = format.element_size,
                          .fractional_bytes = format.fractional_bytes});
  block.set_count_byte(static_cast<std::uint8_t>(fixed.size()));
  std::size_t element = 0;
  for (const double value : fixed) block.SetValue(value, element++);
  block.SetValue(static_cast<double>(offset), element++);
  block.SetValue(static_cast<double>(entries), element);
  return block;
}

}  // namespace

Status D3THardWare::TransferList(ListAxis axis, std::span<double> values,
                                 const LevelSettings& settings) {
  const bool is_power = axis == ListAxis::kPower;
  const BlockFormat& format = is_power ? kPowerList : kFrequencyList;
  const std::array<double, 4> level_elements = {static_cast<double>(settings.level_control),
                                                static_cast<double>(settings.atten_mode), 0.0, 0.0};
  const std::span<const double> fixed =
      is_power ? std::span<const double>(level_elements) : std::span<const double>();
  const std::size_t first = fixed.size() + kBlockElements;
  const std::size_t per_message = kBlockBytes / format.element_size - first;

  Status result = Status::kOk;
  for (std::size_t offset = 0; offset < values.size(); offset += per_message) {
    const std::span<double> chunk =
        values.subspan(offset, std::min(per_message, values.size() - offset));
    HardWareParametr block = MakeBlock(format, fixed, offset, chunk.size());
    for (std::size_t i = 0; i < chunk.size(); ++i) block.SetValue(chunk[i], first + i);
    result = WriteParameter(block);
    if (result != Status::kOk) return result;
    for (std::size_t i = 0; i < chunk.size(); ++i) chunk[i] = block.GetValue(first + i);
  }
  return result;
}

Status D3THardWare::TransferPulseTrain(std::uint32_t mode, PulseSource& source,
                                       std::span<double> widths, std::span<double> gaps,
                                       bool inverse) {
  constexpr std::size_t kSourceElement = 1;
  const std::uint32_t source_code =
      source == PulseSource::kExternal ? kExternalSource : kInternalSource;
  std::uint32_t answered_source = 0;
  const std::size_t count = std::min(widths.size(), gaps.size());

  Status result = Status::kOk;
  for (std::size_t offset = 0; offset < count; offset += kPulsesPerBlock) {
    const std::array<double, 3> elements = {static_cast<double>(mode),
                                            static_cast<double>(source_code), inverse ? 1.0 : 0.0};
    const std::span<const double> fixed = std::span(elements).first(pulse_polarity_ ? 3 : 2);
    const std::size_t first = fixed.size() + kBlockElements;
    const std::size_t entries = std::min(kPulsesPerBlock, count - offset);
    HardWareParametr block = MakeBlock(kPulseTrain, fixed, offset, entries);
    for (std::size_t i = 0; i < entries; ++i) {
      block.SetValue(widths[offset + i], first + 2 * i);
      block.SetValue(gaps[offset + i], first + 2 * i + 1);
    }
    result = WriteParameter(block);
    if (IsNegative(result)) return result;
    for (std::size_t i = 0; i < entries; ++i) {
      widths[offset + i] = block.GetValue(first + 2 * i);
      gaps[offset + i] = block.GetValue(first + 2 * i + 1);
    }
    answered_source = block.GetCode(kSourceElement);
  }
  if (answered_source == kExternalSource) source = PulseSource::kExternal;
  if (answered_source == kInternalSource) source = PulseSource::kInternal;
  return result;
}

Status D3THardWare::TransferFrequencyTable(std::span<double> values) {
  constexpr ParameterLayout kLayout = {
      .identifier = 26, .element_count = 0, .element_size = 2, .fractional_bytes = 1};
  constexpr std::size_t kMostValues = (ProtocolMessage::kBodyCapacity - 2) / kLayout.element_size;
  if (values.size() > kMostValues) return Status::kRefused;
  ParameterLayout layout = kLayout;
  layout.element_count = static_cast<std::uint32_t>(values.size());
  HardWareParametr table(layout);
  for (std::size_t i = 0; i < values.size(); ++i) table.SetValue(values[i], i);
  const Status result = WriteParameter(table);
  if (result != Status::kOk) return result;
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = table.GetValue(i);
  return result;
}
