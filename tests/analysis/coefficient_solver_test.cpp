#include "analysis/coefficient_solver.h"

#include <gtest/gtest.h>

namespace ibis {
namespace {

struct PairRow {
  CurrentRow first, second;
  double up, down;
  double tolerance;
};

// The least squares solution of the two rows and of two more that draw to the prior with a weight
// l, by plane rotations in forty digits. The second and third pair say nearly the same twice, by a
// condition of 800 and, in the third, of more than a million, where the prior has a say. There the
// solution in sixteen digits loses some.
constexpr PairRow pairRows[] = {
    {{-0.03, 0.012, -0.007}, {-0.011, 0.041, 0.019}, 0.46903460836917, 0.589253187607668, 1e-12},
    {{-0.02, 0.02, -0.004}, {-0.0201, 0.02, -0.00403}, 0.300009642601216, 0.100009666737853, 1e-9},
    {{-0.04, 0.01, -0.03},
     {-0.0400001, 0.01, -0.0300002},
     0.80207272382991,
     0.208284905676213,
     1e-6},
};

TEST(SolvePair, IsTheRegularisedLeastSquaresSolution) {
  for (const PairRow& row : pairRows) {
    const Coefficients k = solvePair(row.first, row.second);
    EXPECT_NEAR(k.up, row.up, row.tolerance);
    EXPECT_NEAR(k.down, row.down, row.tolerance);
  }
}

TEST(SolvePair, TakesHalvesWhereNoTableCarriesAnything) {
  const Coefficients k = solvePair({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
  EXPECT_EQ(k.up, 0.5);
  EXPECT_EQ(k.down, 0.5);
}

// Free, the rows want 5 and 10. On the bound 4 of d the first row leaves u = 2 and the second
// misses by 0.06 A; on the bound 4 of u both miss.
TEST(SolvePair, OnABoundTheOtherCoefficientIsTheBestThere) {
  const Coefficients k = solvePair({-0.02, 0.01, 0.0}, {0.0, 0.01, 0.1});
  EXPECT_EQ(k.down, largestCoefficient);
  EXPECT_NEAR(k.up, 2.0, 1e-6);
}

TEST(SolveComplement, TakesHalvesWhereTheTablesAreTheSame) {
  const Coefficients k = solveComplement({0.02, 0.02, 0.01});
  EXPECT_EQ(k.up, 0.5);
  EXPECT_EQ(k.down, 0.5);
}

// Least squares of two rows, 0.1 k = 0.05 and 0.2 k = 0.13: (0.005 + 0.026) / 0.05 = 0.62.
TEST(SolveOpen, IsTheLeastSquaresSolutionOfAllRows) {
  const double time[] = {0.0};
  const CurrentRow rows[] = {{0.1, 0.0, 0.05}, {0.2, 0.0, 0.13}};
  EXPECT_NEAR(solveOpen(rows, 2, time, DriverKind::openSource)[0], 0.62, 1e-12);
}

// A row of 1 % of the largest current counts half; the line between its neighbours is the other.
TEST(SolveOpen, AWeakRowIsDrawnToTheLineBetweenItsNeighbours) {
  const double time[] = {0.0, 1.0, 4.0};
  const CurrentRow rows[] = {{0.0, 0.1, 0.1}, {0.0, 0.001, 0.0}, {0.0, 0.1, 0.0}};
  const std::vector<double> k = solveOpen(rows, 1, time, DriverKind::openDrain);
  EXPECT_NEAR(k[1], 0.375, 1e-12);
}

TEST(SolveOpen, WithoutAnyCurrentItStaysOff) {
  const double time[] = {0.0, 1.0};
  const CurrentRow rows[] = {{0.0, 0.0, 0.1}, {0.0, 0.0, 0.2}};
  EXPECT_EQ(solveOpen(rows, 1, time, DriverKind::openDrain), (std::vector<double>{0.0, 0.0}));
}

}  // namespace
}  // namespace ibis
