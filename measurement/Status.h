// Status codes: what every operation below the COM surface returns.
#pragma once

#include <cstdint>

/// 0 to 6 is success (1 to 6 are instrument notices); negative instrument codes are sign-extended
/// from 16 bits; VISA statuses are 0xBFFFxxxx; 10057 means that there is no session; a few
/// operations return an HRESULT of the driver's own (0x8004xxxx).
using Status = std::int32_t;

constexpr bool IsSuccess(Status status) { return status >= 0 && status <= 6; }

namespace status {

constexpr Status FromBits(std::uint32_t bits) { return static_cast<Status>(bits); }

// Results of the link and the manager.
inline constexpr Status kOk = 0;
inline constexpr Status kRefused = -1;
inline constexpr Status kNoSession = 10057;
inline constexpr Status kWrongInstrumentKind = 20503;

// Instrument codes (16 bits on the wire, sign-extended).
inline constexpr Status kInstrumentRepeat = 1;
inline constexpr Status kInstrumentFormNotUsable = 2;
inline constexpr Status kInstrumentLevelNotSettled = 6;
inline constexpr Status kInstrumentNoIdentity = -32767;    // 0x8001
inline constexpr Status kInstrumentNotSupported = -32766;  // 0x8002
inline constexpr Status kInstrumentFormUnknown = -32765;   // 0x8003
inline constexpr Status kInstrumentPllUnlocked = -32761;   // 0x8007
inline constexpr Status kInstrumentErgFault = -32740;      // 0x801C
inline constexpr Status kInstrumentFileMissing = -32509;   // 0x8103

// VISA statuses that the driver tests or returns itself.
inline constexpr Status kVisaTimeout = FromBits(0xBFFF0015);
inline constexpr Status kVisaProtocolViolation = FromBits(0xBFFF0037);
inline constexpr Status kVisaAllocation = FromBits(0xBFFF003C);
inline constexpr Status kVisaIo = FromBits(0xBFFF003E);
inline constexpr Status kVisaLibraryNotFound = FromBits(0xBFFF009E);
inline constexpr Status kVisaFirst = FromBits(0xBFFF0000);
inline constexpr Status kVisaLast = FromBits(0xBFFF00A8);

// HRESULTs of the driver's own.
inline constexpr Status kCannotRecover = FromBits(0x80047000);
inline constexpr Status kInstrumentError = FromBits(0x80047001);
inline constexpr Status kCannotOpenFile = FromBits(0x80047002);
inline constexpr Status kCannotReadFile = FromBits(0x80047003);
inline constexpr Status kInvalidValue = FromBits(0x80047010);
inline constexpr Status kMethodNotSupported = FromBits(0x80047011);
inline constexpr Status kPropertyNotSupported = FromBits(0x80047012);
inline constexpr Status kEnumerationNotSupported = FromBits(0x80047013);
inline constexpr Status kNotConnected = FromBits(0x8004701D);
inline constexpr Status kUnknownChannelName = FromBits(0x80047020);
inline constexpr Status kOutOfMemory = FromBits(0x80047056);
inline constexpr Status kOperationInProgress = FromBits(0x80047057);
inline constexpr Status kUnexpectedResponse = FromBits(0x80047059);
inline constexpr Status kFileNotFound = FromBits(0x8004705B);
inline constexpr Status kInvalidFileFormat = FromBits(0x8004705C);
inline constexpr Status kIdentificationFailed = FromBits(0x8004705E);
inline constexpr Status kUnknownResource = FromBits(0x80047060);
inline constexpr Status kIdQueryNotSupported = FromBits(0x00047065);
inline constexpr Status kResetNotSupported = FromBits(0x00047066);

}  // namespace status
