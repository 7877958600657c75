// Status codes: what every operation below the COM surface returns.
#pragma once

#include <cstdint>

constexpr std::int32_t SignedBits(std::uint32_t bits) { return static_cast<std::int32_t>(bits); }

/// One number for all that can become of an operation, in ranges that do not meet:
/// 0 success; 1 to 6 notices of the instrument, success too; negative 16-bit codes of the
/// instrument, sign-extended; VISA statuses, 0xBFFFxxxx; 10057, no session; HRESULTs of the
/// driver's own, 0x8004xxxx, and of the system. Any number may come from the instrument or a
/// library, so this is no closed set. A result that does not matter goes to Discard.
enum class [[nodiscard]] Status : std::int32_t{
    kOk = 0,
    kRefused = -1,

    // Notices of the instrument: what was asked for is done, but ...
    kInstrumentRepeat = 1,
    kInstrumentFormNotUsable = 2,
    kInstrumentLevelNotSettled = 6,

    // Results of the link and the manager.
    kNoSession = 10057,
    kWrongInstrumentKind = 20503,

    // Instrument codes.
    kInstrumentNoIdentity = -32767,    ///< 0x8001
    kInstrumentNotSupported = -32766,  ///< 0x8002
    kInstrumentFormUnknown = -32765,   ///< 0x8003
    kInstrumentPllUnlocked = -32761,   ///< 0x8007
    kInstrumentErgFault = -32740,      ///< 0x801C
    kInstrumentFileMissing = -32509,   ///< 0x8103

    // VISA statuses that the driver tests or returns itself.
    kVisaFirst = SignedBits(0xBFFF0000),
    kVisaTimeout = SignedBits(0xBFFF0015),
    kVisaProtocolViolation = SignedBits(0xBFFF0037),
    kVisaAllocation = SignedBits(0xBFFF003C),
    kVisaIo = SignedBits(0xBFFF003E),
    kVisaLibraryNotFound = SignedBits(0xBFFF009E),
    kVisaLast = SignedBits(0xBFFF00A8),

    // HRESULTs of the driver's own.
    kCannotRecover = SignedBits(0x80047000),
    kInstrumentError = SignedBits(0x80047001),
    kCannotOpenFile = SignedBits(0x80047002),
    kCannotReadFile = SignedBits(0x80047003),
    kInvalidValue = SignedBits(0x80047010),
    kMethodNotSupported = SignedBits(0x80047011),
    kPropertyNotSupported = SignedBits(0x80047012),
    kEnumerationNotSupported = SignedBits(0x80047013),
    kNotConnected = SignedBits(0x8004701D),
    kUnknownChannelName = SignedBits(0x80047020),
    kOutOfMemory = SignedBits(0x80047056),
    kOperationInProgress = SignedBits(0x80047057),
    kUnexpectedResponse = SignedBits(0x80047059),
    kFileNotFound = SignedBits(0x8004705B),
    kInvalidFileFormat = SignedBits(0x8004705C),
    kIdentificationFailed = SignedBits(0x8004705E),
    kUnknownResource = SignedBits(0x80047060),
    kIdQueryNotSupported = SignedBits(0x00047065),
    kResetNotSupported = SignedBits(0x00047066),
};

/// The number, as a client receives it.
constexpr std::int32_t ToCode(Status status) { return static_cast<std::int32_t>(status); }

/// 1 to 6: done, and the instrument has something to say about it.
constexpr bool IsNotice(Status status) { return ToCode(status) >= 1 && ToCode(status) <= 6; }

constexpr bool Succeeded(Status status) { return status == Status::kOk || IsNotice(status); }

/// The instrument's own word, good or bad: 16 bits on the wire.
constexpr bool IsInstrumentCode(Status status) {
  return ToCode(status) >= -0x8000 && ToCode(status) <= 0x7FFF;
}

/// A refusal of the instrument or a failure of the link. A positive code beyond the notices is
/// neither this nor success.
constexpr bool IsNegative(Status status) { return status < Status::kOk; }

/// A status of the VISA library.
constexpr bool IsLinkFailure(Status status) {
  return status >= Status::kVisaFirst && status <= Status::kVisaLast;
}

/// A result and what came with it: of use where it succeeded.
template <typename T>
struct [[nodiscard]] StatusAnd {
  Status status = Status::kOk;
  T value{};
};

/// For a result that is meant to vanish; a comment there says why.
constexpr void Discard(Status /*result*/) {}
