#include "measurement/TraceMatrix.h"
#include "tests/platform/ResultCode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <thread>
#include <utility>

namespace {

using testing::ElementsAre;

TraceMatrix Filled(std::initializer_list<std::initializer_list<double>> rows) {
  TraceMatrix matrix;
  matrix.Resize(static_cast<std::int32_t>(rows.size()),
                static_cast<std::int32_t>(rows.begin()->size()));
  std::int32_t row = 0;
  for (const auto& values : rows) {
    std::copy(values.begin(), values.end(), matrix.Row(row++).begin());
  }
  return matrix;
}

TEST(TraceMatrix, SameSizeKeepsTheValues) {
  TraceMatrix matrix = Filled({{1, 2}, {3, 4}});
  EXPECT_EQ(matrix.Resize(2, 2), 0);
  EXPECT_THAT(matrix.Row(1), ElementsAre(3, 4));
  EXPECT_TRUE(matrix.Row(2).empty() && std::as_const(matrix).Row(2).empty());
}

TEST(TraceMatrix, CountBelowOneEmpties) {
  EXPECT_EQ(TraceMatrix().RowCount() + TraceMatrix().ColumnCount(), 0) << "nor at first";
  for (const auto& [rows, columns] : {std::pair{3, 0}, {0, 5}, {-1, 5}, {3, -7}}) {
    TraceMatrix matrix = Filled({{1, 2}});
    EXPECT_EQ(matrix.Resize(rows, columns), -1) << rows << " x " << columns;
    EXPECT_EQ(matrix.RowCount(), 0);
    EXPECT_EQ(matrix.ColumnCount(), 0);
    EXPECT_TRUE(matrix.Row(0).empty() && std::as_const(matrix).Row(0).empty());
    EXPECT_EQ(matrix.Resize(0, 0), 0) << "the present size";
  }
}

TEST(TraceMatrix, CopiesAreIndependent) {
  TraceMatrix matrix = Filled({{1, 2}});
  const TraceMatrix copy(matrix);
  TraceMatrix assigned = Filled({{7}, {8}});
  assigned = matrix;
  matrix.Item(0, 1) = 9;
  matrix.Clear();
  EXPECT_THAT(copy.Row(0), ElementsAre(1, 2));
  EXPECT_THAT(assigned.Row(0), ElementsAre(1, 2));
  EXPECT_EQ(assigned.RowCount(), 1);
}

TEST(TraceMatrix, RowsAreSortedBelowTheFirst) {
  TraceMatrix matrix = Filled({{9, 1}, {std::nan(""), 2}, {3, 3}, {-1, 4}, {3, 5}});
  matrix.SortRows();
  EXPECT_THAT(matrix.Row(0), ElementsAre(9, 1));
  EXPECT_THAT(matrix.Row(1), ElementsAre(-1, 4));
  EXPECT_THAT(matrix.Row(2), ElementsAre(3, 3));
  EXPECT_THAT(matrix.Row(3), ElementsAre(3, 5));
  EXPECT_EQ(matrix.Item(4, 1), 2) << "no number comes last";
}

TEST(TraceMatrix, ColumnsAreSortedBehindTheFirst) {
  TraceMatrix matrix = Filled({{9, 3, 1, 2}, {0, 30, 10, 20}});
  matrix.SortColumns();
  EXPECT_THAT(matrix.Row(0), ElementsAre(9, 1, 2, 3));
  EXPECT_THAT(matrix.Row(1), ElementsAre(0, 10, 20, 30));
}

TEST(TraceMatrix, EmptyTableSorts) {
  TraceMatrix matrix;
  matrix.SortRows();
  matrix.SortColumns();
  EXPECT_TRUE(std::isnan(matrix.Interpolate(1, 1)));
}

TEST(TraceMatrix, InterpolatesRowsByXAndColumnsByY) {
  const TraceMatrix matrix = Filled({{0, 10, 20}, {1, 100, 200}, {3, 300, 400}});
  EXPECT_EQ(matrix.Interpolate(1, 10), 100);
  EXPECT_EQ(matrix.Interpolate(1.5, 10), 150);
  EXPECT_EQ(matrix.Interpolate(1, 12.5), 125);
  EXPECT_EQ(matrix.Interpolate(-5, 99), 200);
  EXPECT_EQ(matrix.Interpolate(7, -1), 300);
  EXPECT_EQ(Filled({{0, 10}, {1, 100}}).Interpolate(7, -1), 100);
  EXPECT_TRUE(std::isnan(Filled({{0, 10, 20}}).Interpolate(1, 1)));
}

TEST(TraceMatrix, LockIsHeldAgainstOtherThreadsOnly) {
  TraceMatrix matrix;
  const auto free_for_others = [&matrix] {
    bool taken = false;
    std::thread([&] {
      taken = matrix.TryLock();
      if (taken) matrix.Unlock();
    }).join();
    return taken;
  };
  matrix.Lock();
  EXPECT_TRUE(matrix.TryLock());
  matrix.Unlock();
  EXPECT_FALSE(free_for_others());
  matrix.Unlock();
  EXPECT_TRUE(free_for_others());
}

}  // namespace
