// Identifiers as texts: the same on every system.
#include <gtest/gtest.h>

#include "platform/com/Com.h"
#include "platform/os/Text.h"

namespace {

constexpr GUID kSampleGuid = {
    0x47ED5189, 0xA398, 0x11D4, {0xBA, 0x58, 0x00, 0x00, 0x64, 0x65, 0x73, 0x74}};
constexpr const OLECHAR* kText = OLESTR("{47ED5189-A398-11D4-BA58-000064657374}");

TEST(Identifiers, AreWrittenInUpperCase) {
  OLECHAR text[39] = {};
  EXPECT_EQ(StringFromGUID2(kSampleGuid, text, 39), 39);
  EXPECT_EQ(os::WideView(text), kText);
  EXPECT_EQ(StringFromGUID2(kSampleGuid, text, 38), 0);
}

TEST(Identifiers, AreReadInEitherCase) {
  for (const OLECHAR* text : {kText, OLESTR("{47ed5189-a398-11d4-ba58-000064657374}")}) {
    GUID guid = {};
    EXPECT_EQ(CLSIDFromString(text, &guid), S_OK);
    EXPECT_TRUE(IsEqualGUID(guid, kSampleGuid));
    guid = {};
    EXPECT_EQ(IIDFromString(text, &guid), S_OK);
    EXPECT_TRUE(IsEqualGUID(guid, kSampleGuid));
    EXPECT_EQ(CLSIDFromString(nullptr, &guid), S_OK);
    EXPECT_TRUE(IsEqualGUID(guid, GUID_NULL));
  }
}

struct BadText {
  const char* fault;
  const OLECHAR* text;
  HRESULT as_iid;
};

TEST(Identifiers, OtherTextsAreRefused) {
  const BadText cases[] = {
      {"dash missing", OLESTR("{47ED51890A398-11D4-BA58-000064657374}"), CO_E_IIDSTRING},
      {"no hexadecimal digit", OLESTR("{47ED5189-A398-11D4-BA58-00006465737G}"), CO_E_IIDSTRING},
      {"brace missing at the end", OLESTR("{47ED5189-A398-11D4-BA58-0000646573740"),
       CO_E_IIDSTRING},
      {"too short", OLESTR("{47ED5189-A398-11D4-BA58-00006465737}"), E_INVALIDARG},
      {"too long", OLESTR("{47ED5189-A398-11D4-BA58-000064657374}0"), E_INVALIDARG},
  };
  for (const BadText& bad : cases) {
    GUID guid = {};
    EXPECT_EQ(CLSIDFromString(bad.text, &guid), CO_E_CLASSSTRING) << bad.fault;
    EXPECT_EQ(IIDFromString(bad.text, &guid), bad.as_iid) << bad.fault;
  }
}

/// Clients know the interfaces and the results by numbers that are the same everywhere.
TEST(Identifiers, AreThoseOfTheComStandard) {
  const std::pair<GUID, const OLECHAR*> interfaces[] = {
      {__uuidof(IUnknown), OLESTR("{00000000-0000-0000-C000-000000000046}")},
      {__uuidof(IClassFactory), OLESTR("{00000001-0000-0000-C000-000000000046}")},
      {__uuidof(IErrorInfo), OLESTR("{1CF2B120-547D-101B-8E65-08002B2BD119}")},
      {__uuidof(ICreateErrorInfo), OLESTR("{22F03340-547D-101B-8E65-08002B2BD119}")},
      {__uuidof(ISupportErrorInfo), OLESTR("{DF0B3D60-548F-101B-8E65-08002B2BD119}")},
      {__uuidof(IProvideClassInfo), OLESTR("{B196B283-BAB4-101A-B69C-00AA00341D07}")},
      {__uuidof(IProvideClassInfo2), OLESTR("{A6BC3AC0-DBAA-11CE-9DE3-00AA004BB851}")},
  };
  for (const auto& [iid, expected] : interfaces) {
    OLECHAR text[39] = {};
    StringFromGUID2(iid, text, 39);
    EXPECT_EQ(os::WideView(text), expected);
  }
  // clang-format off
  const std::pair<HRESULT, unsigned> results[] = {
      {S_OK, 0}, {S_FALSE, 1}, {E_NOTIMPL, 0x80004001}, {E_NOINTERFACE, 0x80004002},
      {E_POINTER, 0x80004003}, {E_FAIL, 0x80004005}, {E_UNEXPECTED, 0x8000FFFF},
      {E_ACCESSDENIED, 0x80070005}, {E_OUTOFMEMORY, 0x8007000E}, {E_INVALIDARG, 0x80070057},
      {CLASS_E_NOAGGREGATION, 0x80040110}, {CLASS_E_CLASSNOTAVAILABLE, 0x80040111},
      {REGDB_E_CLASSNOTREG, 0x80040154}, {CO_E_NOTINITIALIZED, 0x800401F0},
      {CO_E_CLASSSTRING, 0x800401F3}, {CO_E_IIDSTRING, 0x800401F4}, {CO_E_DLLNOTFOUND, 0x800401F8},
      {CO_E_ERRORINDLL, 0x800401F9}, {RPC_E_CHANGED_MODE, 0x80010106},
      {DISP_E_TYPEMISMATCH, 0x80020005}, {DISP_E_BADINDEX, 0x8002000B},
      {DISP_E_ARRAYISLOCKED, 0x8002000D}, {TYPE_E_LIBNOTREGISTERED, 0x8002801D},
      {HRESULT_FROM_WIN32(0), 0}, {HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED), 0x80070005},
      {ERROR_FILE_NOT_FOUND, 2}, {ERROR_INVALID_HANDLE, 6}, {ERROR_NOT_ENOUGH_MEMORY, 8},
      {ERROR_WRITE_FAULT, 29}, {ERROR_INVALID_PARAMETER, 87}, {ERROR_MORE_DATA, 234},
      {ERROR_NO_MORE_ITEMS, 259}, {ERROR_BADDB, 1009}, {ERROR_KEY_DELETED, 1018},
      {REG_SZ, 1}, {REG_CREATED_NEW_KEY, 1}, {REG_OPENED_EXISTING_KEY, 2},
      {VT_EMPTY, 0}, {VT_I2, 2}, {VT_I4, 3}, {VT_R4, 4}, {VT_R8, 5}, {VT_BOOL, 11}, {VT_UI1, 17},
      {FADF_RECORD, 0x20}, {FADF_HAVEIID, 0x40}, {FADF_HAVEVARTYPE, 0x80}, {FADF_BSTR, 0x100},
      {FADF_UNKNOWN, 0x200}, {FADF_DISPATCH, 0x400}, {FADF_VARIANT, 0x800},
      {CLSCTX_INPROC_SERVER, 1}, {CLSCTX_LOCAL_SERVER, 4},
  };
  // clang-format on
  for (const auto& [result, expected] : results) EXPECT_EQ(static_cast<unsigned>(result), expected);
}

TEST(Identifiers, ClassOfAnUnknownProgIdIsRefused) {
  CLSID clsid = kSampleGuid;
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Zentrel.NoSuchClass.7"), &clsid), CO_E_CLASSSTRING);
  LPOLESTR prog_id = nullptr;
  EXPECT_EQ(ProgIDFromCLSID(kSampleGuid, &prog_id), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(prog_id, nullptr);
}

}  // namespace
