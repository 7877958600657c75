// A message's parts in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/ParameterTable.h"
#include "simulator/Wire.h"

namespace simulator {

/// The identifier of a write's or a read's parameter; none for another message, and for one whose
/// body is too short.
std::optional<std::uint16_t> ParameterOf(const Message& message);

struct NamedValue {
  ElementName element;  ///< its name is empty where the form is not in the table
  double value = 0.0;   ///< in the element's unit
};

/// The elements of a parameter, as many as the body has whole ones; none where the type code is
/// none.
std::vector<NamedValue> ElementsOf(const Message& message);

/// "0", "6", "0x8003".
std::string StatusText(std::int16_t status);

/// Of a read of a file, the path, and of its answer what stands behind the path; in one line.
std::string FileText(const Message& message, bool is_answer);

}  // namespace simulator
