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

TEST(Identifiers, ClassOfAnUnknownProgIdIsRefused) {
  CLSID clsid = kSampleGuid;
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Zentrel.NoSuchClass.7"), &clsid), CO_E_CLASSSTRING);
  LPOLESTR prog_id = nullptr;
  EXPECT_EQ(ProgIDFromCLSID(kSampleGuid, &prog_id), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(prog_id, nullptr);
}

}  // namespace
