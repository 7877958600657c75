// Automation arrays: the same on every system.
#include <gtest/gtest.h>

#include <limits>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"

namespace {

TEST(SafeArray, BoundsAreThoseOfEachDimension) {
  SAFEARRAYBOUND bounds[] = {{3, 1}, {4, -2}};
  const SafeArrayOwner array(SafeArrayCreate(VT_R8, 2, bounds));
  ASSERT_NE(array.Get(), nullptr);
  EXPECT_EQ(SafeArrayGetDim(array.Get()), 2U);
  struct Expected {
    UINT dimension;
    LONG lower;
    LONG upper;
  };
  for (const Expected& expected : {Expected{1, 1, 3}, Expected{2, -2, 1}}) {
    LONG lower = 0;
    LONG upper = 0;
    EXPECT_EQ(SafeArrayGetLBound(array.Get(), expected.dimension, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array.Get(), expected.dimension, &upper), S_OK);
    EXPECT_EQ(lower, expected.lower);
    EXPECT_EQ(upper, expected.upper);
  }
}

TEST(SafeArray, DimensionThatItHasNotIsABadIndex) {
  const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, 1));
  LONG bound = 0;
  EXPECT_EQ(SafeArrayGetLBound(array.Get(), 0, &bound), DISP_E_BADINDEX);
  EXPECT_EQ(SafeArrayGetUBound(array.Get(), 2, &bound), DISP_E_BADINDEX);
}

TEST(SafeArray, EmptyVectorEndsBeforeItBegins) {
  const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, 0));
  ASSERT_NE(array.Get(), nullptr);
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetUBound(array.Get(), 1, &upper), S_OK);
  EXPECT_EQ(upper, -1);
  void* data = nullptr;
  EXPECT_EQ(SafeArrayAccessData(array.Get(), &data), S_OK);
  EXPECT_EQ(SafeArrayUnaccessData(array.Get()), S_OK);
}

TEST(SafeArray, ElementsAreZeroAndKnowTheirType) {
  const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, 3));
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(SafeArrayGetVartype(array.Get(), &type), S_OK);
  EXPECT_EQ(type, VT_R8);
  EXPECT_EQ(array.Get()->cbElements, 8U);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(array.Get(), &data), S_OK);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(static_cast<double*>(data)[i], 0.0);
  SafeArrayUnaccessData(array.Get());
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
#endif
}

}  // namespace
