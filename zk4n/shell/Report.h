// Results as text: for programs, and for people.
#pragma once

#include <string>
#include <string_view>

#include "zk4n/shell/Console.h"

namespace shell {

/// One line of JSON without its end: {"command":...,"hresult":...,"value":...,"out":{...},
/// "error":...}, for an error trail with "records":[{"status":...,"location":...,"count":...}].
/// Bytes of the command that are not UTF-8 become U+FFFD. A number that is not
/// finite, which JSON lacks, is one of the texts "NaN", "Infinity" and "-Infinity", so that it
/// differs from the null of an argument that was not written.
std::string ResultAsJson(std::string_view command, const Result& result);
/// {"command":...,"fault":...}.
std::string FaultAsJson(std::string_view command, std::string_view why);

/// What a person reads: values with their units, the name of a failure and the driver's text for
/// it, and a hint where the instrument's own report is to be had. One or more lines without the
/// last one's end.
std::string ResultAsText(const Result& result);

}  // namespace shell
