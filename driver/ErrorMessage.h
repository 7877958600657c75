// The texts of the driver's error descriptions: narrow, in the thread's ANSI code page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "measurement/Status.h"

/// The name that every built message starts with.
inline constexpr std::string_view kLibraryName = "ZentrelK4NLib";

// Texts that members report as they stand, without the library's name in front.
inline constexpr std::string_view kNotConnectedText =
    "A connection to the instrument has not been established.";
inline constexpr std::string_view kInstrumentErrorText =
    "Instrument error detected.  Use ErrorQuery() to determine the error(s).";
inline constexpr std::string_view kUnexpectedResponseText = "Unexpected response from instrument.";

/// The message for an error code, with up to three texts put into the places that its template
/// marks %1 to %3. An insert is taken as it is, per cent signs included. A code without a text of
/// its own gives "Unknown error" with the code in upper-case hexadecimal.
std::string BuildErrorMessage(Status code, std::string_view insert_1 = {},
                              std::string_view insert_2 = {}, std::string_view insert_3 = {});

/// "ZentrelK4NLib: " and the message.
std::string PrefixedMessage(std::string_view message);

/// Kept: the refusals of two properties differ in the full stop at their end.
enum class FullStop { kYes, kNo };

/// The text for an enumeration value that a property does not take.
std::string UnsupportedPropertyValue(std::int32_t value, std::string_view property, FullStop stop);
/// The text for an enumeration value that a parameter of a method does not take.
std::string UnsupportedParameterValue(std::int32_t value, std::string_view parameter,
                                      std::string_view method);
