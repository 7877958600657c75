// Automation arrays: the same on every system.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"

namespace {

/// "lower to upper" of a dimension, or the failure.
std::string BoundsOf(const SafeArrayOwner& array, UINT dimension) {
  LONG lower = 0;
  LONG upper = 0;
  const HRESULT result = SafeArrayGetLBound(array.Get(), dimension, &lower);
  EXPECT_EQ(SafeArrayGetUBound(array.Get(), dimension, &upper), result);
  if (result == DISP_E_BADINDEX) return "bad index";
  return std::to_string(lower) + " to " + std::to_string(upper);
}

TEST(SafeArray, BoundsAreThoseOfEachDimension) {
  SAFEARRAYBOUND bounds[] = {{3, 1}, {4, -2}};
  const SafeArrayOwner array(SafeArrayCreate(VT_R8, 2, bounds));
  EXPECT_EQ(SafeArrayGetDim(array.Get()), 2U);
  EXPECT_EQ(BoundsOf(array, 0), "bad index");
  EXPECT_EQ(BoundsOf(array, 1), "1 to 3");
  EXPECT_EQ(BoundsOf(array, 2), "-2 to 1");
  EXPECT_EQ(BoundsOf(array, 3), "bad index");
}

TEST(SafeArray, ElementsAreZeroAndKnowTheirType) {
  for (const ULONG size : {0U, 3U}) {
    const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, size));
    EXPECT_EQ(BoundsOf(array, 1), size == 0 ? "0 to -1" : "0 to 2");
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(SafeArrayGetVartype(array.Get(), &type), S_OK);
    EXPECT_EQ(type, VT_R8);
    EXPECT_EQ(array.Get()->cbElements, 8U);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(array.Get(), &data), S_OK);
    for (ULONG i = 0; i < size; ++i) EXPECT_EQ(static_cast<double*>(data)[i], 0.0);
    EXPECT_EQ(SafeArrayUnaccessData(array.Get()), S_OK);
  }
}

TEST(SafeArray, ElementsHaveTheSizeOfTheirType) {
  for (const auto& [type, size] : std::initializer_list<std::pair<VARTYPE, ULONG>>{
           {VT_I2, 2}, {VT_I4, 4}, {VT_R4, 4}, {VT_R8, 8}, {VT_BOOL, 2}, {VT_UI1, 1}}) {
    EXPECT_EQ(SafeArrayOwner(SafeArrayCreateVector(type, 0, 1)).Get()->cbElements, size) << type;
  }
}

TEST(SafeArray, OneMadeByHandHasNoTypeUnlessItSaysSo) {
  double value = 0.0;
  SAFEARRAY array{};
  array.cDims = 1;
  array.cbElements = sizeof value;
  array.pvData = &value;
  array.rgsabound[0].cElements = 1;
  VARTYPE type = VT_I4;
  EXPECT_EQ(SafeArrayGetVartype(&array, &type), E_INVALIDARG);
  void* data = nullptr;
  EXPECT_EQ(SafeArrayAccessData(&array, &data), S_OK);
  EXPECT_EQ(data, &value);
  EXPECT_EQ(SafeArrayUnaccessData(&array), S_OK);
}

TEST(SafeArray, LocksAreCountedAndKeepItAlive) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_R8, 0, 1);
  void* data = nullptr;
  EXPECT_EQ(SafeArrayLock(array), S_OK);
  EXPECT_EQ(SafeArrayAccessData(array, &data), S_OK);
  EXPECT_EQ(array->cLocks, 2U);
  EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayUnlock(array), S_OK);
  EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, NullPointersAreRefused) {
  const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, 1));
  LONG bound = 0;
  void* data = nullptr;
  EXPECT_EQ(SafeArrayGetDim(nullptr), 0U);
  EXPECT_EQ(SafeArrayGetUBound(nullptr, 1, &bound), E_INVALIDARG);
  EXPECT_EQ(SafeArrayGetUBound(array.Get(), 1, nullptr), E_INVALIDARG);
  EXPECT_EQ(SafeArrayAccessData(nullptr, &data), E_INVALIDARG);
  EXPECT_EQ(SafeArrayAccessData(array.Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
}

TEST(SafeArray, SizeThatDoesNotFitGivesNull) {
  SAFEARRAYBOUND bounds[] = {{0x10000, 0}, {0x10000, 0}, {0x10000, 0}, {0x10000, 0}, {0x10000, 0}};
  EXPECT_EQ(SafeArrayCreate(VT_R8, 0, bounds), nullptr);
#ifndef _WIN32
  // Ours alone: 32 GB count as no memory, and the product of these bounds must not wrap to a small
  // one.
  EXPECT_EQ(SafeArrayCreateVector(VT_R8, 0, std::numeric_limits<ULONG>::max()), nullptr);
  EXPECT_EQ(SafeArrayCreate(VT_UI1, 5, bounds), nullptr);
  EXPECT_EQ(SafeArrayCreateVector(VT_EMPTY, 0, 1), nullptr);
  std::vector<SAFEARRAYBOUND> many(0x10000, {1, 7});
  EXPECT_EQ(SafeArrayCreate(VT_R8, 0x10000, many.data()), nullptr);
  const SafeArrayOwner array(SafeArrayCreate(VT_R8, 0xFFFF, many.data()));
  ASSERT_NE(array.Get(), nullptr);
  EXPECT_EQ(BoundsOf(array, 0xFFFF), "7 to 7");
#endif
}

}  // namespace
