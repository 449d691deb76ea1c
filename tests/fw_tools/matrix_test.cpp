// SPDX-License-Identifier: BSD-3-Clause
// Tests of the dense matrix.
#include "fw_tools/matrix.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/foreign_locale.h"
#include "support/matchers.h"
#include "support/matrix_of.h"

namespace {

using Matrix = fw::matrix<double>;
using support::matrix_of;

/// Shows the row array, which is null exactly when the matrix is empty.
struct Open_matrix : Matrix {
  using Matrix::matrix;
  Open_matrix() = default;
  explicit Open_matrix(const Matrix& source) : Matrix(source) {}
  bool has_rows() const { return rows != nullptr; }
};

void expect_empty(const Open_matrix& m) {
  EXPECT_EQ(m.get_dim1(), 0);
  EXPECT_EQ(m.get_dim2(), 0);
  EXPECT_FALSE(m.has_rows());
}

void expect_equal(const Matrix& actual, const Matrix& expected) { EXPECT_TRUE(support::is_close(actual, expected, 0)); }

std::string set_size_report(const std::string& details) {
  return support::block("fw_tools/matrix.h", 210, "void fw::matrix<T>::set_size(int, int) [with T = double]", details);
}

TEST(Matrix, IsEmptyByDefault) { expect_empty(Open_matrix()); }

TEST(Matrix, StartsWithZeros) { expect_equal(Matrix(2, 3), matrix_of({{0, 0, 0}, {0, 0, 0}})); }

TEST(Matrix, HasAVirtualDestructor) { EXPECT_TRUE(std::has_virtual_destructor_v<Matrix>); }

TEST(Matrix, AddressesTheSameElementInEveryWay) {
  Matrix m(2, 3);
  m.set(1, 2, 5.0);
  EXPECT_EQ(m.get(1, 2), 5.0);
  EXPECT_EQ(m[1][2], 5.0);
  m.get(0, 1) = 6.0;
  m[1][0] = 7.0;
  const Matrix& constant = m;
  EXPECT_EQ(constant.get(0, 1), 6.0);
  EXPECT_EQ(constant[1][0], 7.0);
  expect_equal(m, matrix_of({{0, 6, 0}, {7, 0, 5}}));
}

TEST(Matrix, IsCopiedDeeply) {
  Matrix source = matrix_of({{1, 2}, {3, 4}});
  Matrix copy(source);
  Matrix assigned(5, 1);
  EXPECT_EQ(&(assigned = source), &assigned);
  source.set(0, 0, 9.0);
  expect_equal(copy, matrix_of({{1, 2}, {3, 4}}));
  expect_equal(assigned, matrix_of({{1, 2}, {3, 4}}));
}

TEST(Matrix, IsEmptyAfterAssignmentOfAnEmptyOne) {
  Open_matrix m(2, 2);
  m = Open_matrix();
  expect_empty(m);
}

TEST(Matrix, LeavesTheSourceOfAMoveEmpty) {
  Open_matrix source(2, 1);
  source.set(1, 0, 3.0);
  const Open_matrix moved(std::move(source));
  expect_equal(moved, matrix_of({{0}, {3}}));
  expect_empty(source);  // NOLINT(bugprone-use-after-move): the state it is left in is what is tested
}

TEST(Matrix, AssignedToItselfKeepsItsSizeAndLosesItsElements) {
  Matrix m = matrix_of({{1, 2, 3}, {4, 5, 6}});
  const Matrix& itself = m;
  m = itself;
  expect_equal(m, Matrix(2, 3));
}

TEST(Matrix, IsEmptyWhenOneDimensionIsZero) {
  for (const auto& [num_rows, num_columns] : std::vector<std::pair<int, int>>{{3, 0}, {0, 3}, {0, 0}}) {
    SCOPED_TRACE(testing::Message() << num_rows << " by " << num_columns);
    Open_matrix m(2, 2);
    m.set_size(num_rows, num_columns);
    expect_empty(m);
    expect_empty(Open_matrix(num_rows, num_columns));
  }
}

TEST(Matrix, ResetsEveryElementWhenItIsSetToItsOwnSize) {
  Matrix m = matrix_of({{1, 2}, {3, 4}});
  m.set_size(2, 2);
  expect_equal(m, Matrix(2, 2));
}

TEST(Matrix, RefusesNegativeSizesAndIsThenEmpty) {
  for (const auto& [num_rows, num_columns] :
       std::vector<std::pair<int, int>>{{-1, 2}, {2, -1}, {-1, 0}, {0, -4}, {-2147483647 - 1, 1000}}) {
    SCOPED_TRACE(testing::Message() << num_rows << " by " << num_columns);
    Open_matrix m(2, 2);
    const support::Foreign_locale foreign;
    const support::Caught caught = support::caught_by([&, r = num_rows, c = num_columns] { m.set_size(r, c); });
    EXPECT_EQ(caught.text, set_size_report("matrix::set_size() : tried to set size to " + std::to_string(num_rows) +
                                           "," + std::to_string(num_columns)));
    EXPECT_EQ(caught.level, 0);
    expect_empty(m);
  }
}

TEST(Matrix, RefusesNegativeSizesInItsConstructor) {
  EXPECT_EQ(support::caught_by([] { Matrix(-1, 2); }).text,
            set_size_report("matrix::set_size() : tried to set size to -1,2"));
}

TEST(Matrix, IsEmptyAfterClearWhichMayBeRepeated) {
  Open_matrix m(3, 2);
  m.clear();
  expect_empty(m);
  m.clear();
  expect_empty(m);
  m.set_size(1, 1);
  expect_equal(m, matrix_of({{0}}));
}

TEST(MatrixTranspose, SwapsRowsAndColumns) {
  expect_equal(matrix_of({{1, 2, 3}, {4, 5, 6}}).transpose(), matrix_of({{1, 4}, {2, 5}, {3, 6}}));
  expect_empty(Open_matrix(Open_matrix().transpose()));
}

TEST(MatrixProduct, MultipliesRowsWithColumns) {
  const Matrix a = matrix_of({{1, 2, 3}, {4, 5, 6}});
  const Matrix b = matrix_of({{7, 8}, {9, 10}, {11, 12}});
  expect_equal(a * b, matrix_of({{58, 64}, {139, 154}}));
  expect_equal(a, matrix_of({{1, 2, 3}, {4, 5, 6}}));
  expect_equal(b, matrix_of({{7, 8}, {9, 10}, {11, 12}}));
}

TEST(MatrixProduct, ReplacesItsLeftOperand) {
  Matrix a = matrix_of({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(&(a *= matrix_of({{1}, {0}, {-1}})), &a);
  expect_equal(a, matrix_of({{-2}, {-2}}));
}

TEST(MatrixProduct, OfAMatrixWithItselfIsItsSquare) {
  Matrix a = matrix_of({{1, 2}, {3, 4}});
  const Matrix& itself = a;
  a *= itself;
  expect_equal(a, matrix_of({{7, 10}, {15, 22}}));
}

TEST(MatrixProduct, ReadsOnlyAsManyRowsOfTheRightAsTheLeftHasColumns) {
  expect_equal(matrix_of({{2, 3}}) * matrix_of({{1, 10}, {2, 20}, {99, 99}}), matrix_of({{8, 80}}));
}

TEST(MatrixProduct, AddsItsTermsInOrder) {
  const Matrix right = matrix_of({{1}, {1}, {1}});
  expect_equal(matrix_of({{1e16, 1, -1e16}}) * right, matrix_of({{0}}));
  expect_equal(matrix_of({{1e16, -1e16, 1}}) * right, matrix_of({{1}}));
}

TEST(MatrixProduct, WithAnEmptyMatrixIsEmpty) {
  expect_empty(Open_matrix(matrix_of({{1, 2}}) * Matrix()));
  expect_empty(Open_matrix(Matrix() * matrix_of({{1, 2}})));
}

TEST(MatrixTrace, AddsTheDiagonal) {
  EXPECT_EQ(matrix_of({{1, 20, 30}, {40, 5, 60}, {70, 80, 9}}).trace(), 15.0);
  EXPECT_EQ(Matrix().trace(), 0.0);
}

TEST(MatrixTrace, RunsOverTheRowsOfAWideMatrix) { EXPECT_EQ(matrix_of({{1, 2, 3}, {4, 5, 6}}).trace(), 6.0); }

std::string printed(const Matrix& m) {
  std::ostringstream stream;
  stream << m;
  return stream.str();
}

TEST(MatrixPrinting, EndsEveryElementWithATab) {
  EXPECT_EQ(printed(matrix_of({{1, 0}, {0, 1}})), "2\t2\n1\t0\t\n0\t1\t\n");
  EXPECT_EQ(printed(matrix_of({{1.5, -2, 1e10}})), "1\t3\n1.5\t-2\t1e+10\t\n");
}

TEST(MatrixPrinting, OfAnEmptyMatrixIsOneLine) { EXPECT_EQ(printed(Matrix()), "0\t0\n"); }

TEST(MatrixPrinting, UsesTheStreamsFormatAndReturnsTheStream) {
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(3);
  EXPECT_EQ(&(stream << matrix_of({{0.5}})), &stream);
  EXPECT_EQ(stream.str(), "1\t1\n0.500\t\n");
}

}  // namespace
