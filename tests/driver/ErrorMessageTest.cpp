#include "driver/ErrorMessage.h"

#include <gtest/gtest.h>

namespace {

struct BuilderCase {
  const char* name;
  std::uint32_t code;
  const char* insert_1;
  const char* insert_2;
  const char* insert_3;
  const char* expected;
};

constexpr BuilderCase kBuilderCases[] = {
    {"TheDashIsOneByte", 0x80047000, "", "", "", "Failure \x96 cannot recover."},
    {"CannotOpen", 0x80047002, "a.det", "", "", "Cannot open file a.det."},
    {"CannotRead", 0x80047003, "a.det", "", "", "Error reading file a.det."},
    {"ThreeInsertsInOrder", 0x80047010, "4", "Index", "Name",
     "Invalid value (4) for method Index, parameter Name."},
    {"Method", 0x80047011, "Reset", "", "",
     "Does not support this class-compliant feature: method Reset."},
    {"Property", 0x80047012, "Cache", "", "",
     "Does not support this class-compliant feature: property Cache."},
    {"NotConnected", 0x8004701D, "", "", "",
     "A connection to the instrument has not been established."},
    {"UnknownChannel", 0x80047020, "", "", "", "Unknown channel name."},
    {"NoMemory", 0x80047056, "", "", "", "Could not allocate necessary memory."},
    {"InProgress", 0x80047057, "", "", "", "Operation in progress."},
    {"NoFullStopAfterTheFile", 0x8004705B, "ZeVisa64.dll", "", "", "File not found ZeVisa64.dll"},
    {"UnknownResource", 0x80047060, "TCPIP::h::1::SOCKET", "", "",
     "Unknown resource TCPIP::h::1::SOCKET."},
    {"InsertIsNotReadAgain", 0x80047060, "%1%2!X!%", "x", "y", "Unknown resource %1%2!X!%."},
    {"BelowTheTable", 0x80040000, "", "", "", "Unknown error 80040000."},
    {"AboveTheTable", 0x80047061, "", "", "", "Unknown error 80047061."},
    {"UpperCaseDigits", 0xBFFF00AB, "", "", "", "Unknown error BFFF00AB."},
    {"InsideTheRangeButNotListed", 0x8004705E, "", "", "", "Unknown error 8004705E."},
    {"NoLeadingZeros", 0x00002749, "", "", "", "Unknown error 2749."},
};

TEST(ErrorMessage, BuildsEveryTemplate) {
  for (const auto& test : kBuilderCases) {
    EXPECT_EQ(
        BuildErrorMessage(status::FromBits(test.code), test.insert_1, test.insert_2, test.insert_3),
        test.expected)
        << test.name;
  }
}

TEST(ErrorMessage, EnumerationTextsDifferInTheirFullStop) {
  EXPECT_EQ(UnsupportedPropertyValue(-1, "Mode", FullStop::kYes),
            "Does not support this class-compliant feature: (enumeration) value -1 passed as the "
            "value for property Mode.");
  EXPECT_EQ(UnsupportedPropertyValue(259, "Scaling", FullStop::kNo),
            "Does not support this class-compliant feature: (enumeration) value 259 passed as the "
            "value for property Scaling");
  EXPECT_EQ(UnsupportedParameterValue(1, "Scaling", "ConfigureStartStop"),
            "Does not support this class-compliant feature: (enumeration) value 1 passed as the "
            "value for parameter Scaling in method ConfigureStartStop.");
}

}  // namespace
