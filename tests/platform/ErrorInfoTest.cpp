// Error information: the same on every system.
#include <gtest/gtest.h>

#include <thread>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "tests/platform/Counted.h"

namespace {

constexpr GUID kGuid = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

TEST(ErrorInfo, EachThreadHasItsOwn) {
  Counted here;
  Counted there;
  IErrorInfo* taken = nullptr;
  SetErrorInfo(0, &here);
  std::thread([&] {
    EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE);
    SetErrorInfo(0, &there);
    EXPECT_EQ(GetErrorInfo(0, &taken), S_OK);
    EXPECT_EQ(taken, &there);
  }).join();
  EXPECT_EQ(GetErrorInfo(0, &taken), S_OK);
  EXPECT_EQ(taken, &here);
}

TEST(ErrorInfo, LaterOneReplacesEarlierAndItsReferenceGoesToTheTaker) {
  Counted first;
  Counted second;
  SetErrorInfo(0, &first);
  EXPECT_EQ(first.references, 2U);
  SetErrorInfo(0, &second);
  EXPECT_EQ(first.references, 1U);
  IErrorInfo* taken = nullptr;
  EXPECT_EQ(GetErrorInfo(0, &taken), S_OK);
  EXPECT_EQ(taken, &second);
  EXPECT_EQ(second.references, 2U);
  EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE) << "taken once";
  EXPECT_EQ(taken, nullptr);
  SetErrorInfo(0, &first);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(first.references, 1U);
  EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE);
}

TEST(ErrorInfo, KeepsWhatWasSet) {
  ComPtr<ICreateErrorInfo> creator;
  ASSERT_EQ(CreateErrorInfo(creator.Put()), S_OK);
  OLECHAR text[] = OLESTR("description");
  creator->SetGUID(kGuid);
  EXPECT_EQ(creator->SetSource(nullptr), S_OK);
  EXPECT_EQ(creator->SetDescription(text), S_OK);
  creator->SetHelpContext(7);
  const auto info = creator.As<IErrorInfo>();
  ASSERT_TRUE(info);
  GUID guid = {};
  DWORD help_context = 0;
  Bstr source;
  Bstr description;
  EXPECT_EQ(info->GetGUID(&guid), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, kGuid));
  EXPECT_EQ(info->GetSource(source.Put()), S_OK);
  EXPECT_EQ(source.Get(), nullptr);
  EXPECT_EQ(info->GetDescription(description.Put()), S_OK);
  EXPECT_EQ(description.View(), text);
  EXPECT_EQ(info->GetHelpContext(&help_context), S_OK);
  EXPECT_EQ(help_context, 7U);
}

TEST(ErrorInfo, BadArgumentsAreRefused) {
  IErrorInfo* info = nullptr;
  EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
  EXPECT_EQ(GetErrorInfo(1, &info), E_INVALIDARG);
  EXPECT_EQ(SetErrorInfo(1, nullptr), E_INVALIDARG);
}

}  // namespace
