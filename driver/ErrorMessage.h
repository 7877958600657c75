// The texts of the driver's error descriptions. The driver's own words are narrow, in the thread's
// ANSI code page; built messages are wide, as they may hold a text of the client's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/os/Text.h"
#include "status/Status.h"

namespace driver {

/// The name that every built message starts with.
inline constexpr std::string_view kLibraryName = "ZentrelK4NLib";

/// Texts that members report as they stand, without the library's name in front.
inline constexpr std::string_view kNotConnectedText =
    "A connection to the instrument has not been established.";
inline constexpr std::string_view kInstrumentErrorText =
    "Instrument error detected.  Use ErrorQuery() to determine the error(s).";
inline constexpr std::string_view kUnexpectedResponseText = "Unexpected response from instrument.";

/// The message for an error code, with up to three texts put into the places that its template
/// marks %1 to %3. An insert is taken as it is, per cent signs included. A code without a text of
/// its own gives "Unknown error" with the code in upper-case hexadecimal.
os::WideString BuildErrorMessage(Status code, os::WideView insert_1 = {},
                                 os::WideView insert_2 = {}, os::WideView insert_3 = {});

/// "ZentrelK4NLib: " and the message.
os::WideString PrefixedMessage(os::WideView message);

/// Kept: the refusals of two properties differ in the full stop at their end.
enum class FullStop { kYes, kNo };

/// The text for an enumeration value that a property does not take.
std::string UnsupportedPropertyValue(std::int32_t value, std::string_view property, FullStop stop);
/// The text for an enumeration value that a parameter of a method does not take.
std::string UnsupportedParameterValue(std::int32_t value, std::string_view parameter,
                                      std::string_view method);

}  // namespace driver
