#include "analysis/coupling.h"

#include <gtest/gtest.h>

#include <numeric>

namespace ibis {
namespace {

SymmetricMatrix matrix(double a, double b, double c) {
  SymmetricMatrix m(2);
  m.set(0, 0, a);
  m.set(0, 1, b);
  m.set(1, 1, c);
  return m;
}

IBISPackageModel twoPins(double l12, double c12) {
  IBISPackageModel model;
  model.resistance = {{1, 1, 0.1}, {1, 2, 0.01}, {2, 2, 0.2}};
  model.inductance = {{1, 1, 4e-9}, {1, 2, l12}, {2, 2, 9e-9}};
  model.capacitance = {{1, 1, 1e-12}, {1, 2, c12}, {2, 2, 2e-12}};
  return model;
}

constexpr std::int32_t rows[] = {1, 2};

TEST(Coupling, CholeskyTellsDefiniteMatrices) {
  EXPECT_TRUE(isPositiveDefinite(matrix(2.0, 1.0, 2.0)));
  EXPECT_FALSE(isPositiveDefinite(matrix(1.0, 2.0, 1.0)));
  EXPECT_FALSE(isPositiveDefinite(matrix(0.0, 0.0, 1.0)));
  EXPECT_TRUE(isPositiveDefinite(SymmetricMatrix()));
}

// Every pair of three pins passes alone; the determinant 1 + 2 k^3 - 3 k^2 of all three is 0.044
// for -0.49 and -0.512 for -0.6.
TEST(Coupling, CholeskySeesWhatNoPairTells) {
  for (const double k : {-0.49, -0.6}) {
    SymmetricMatrix three(3);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = i; j < 3; ++j) three.set(i, j, i == j ? 1.0 : k);
    }
    EXPECT_EQ(isPositiveDefinite(three), k == -0.49);
  }
}

// The smallest eigenvalue of Hilbert's matrix of six rows lies between 1.08e-7 and 1.09e-7, by the
// signs of its leading minors in exact fractions.
TEST(Coupling, CholeskyTellsTheLastDefiniteMatrix) {
  for (const double shift : {1.08e-7, 1.09e-7}) {
    SymmetricMatrix hilbert(6);
    for (std::size_t i = 0; i < 6; ++i) {
      for (std::size_t j = i; j < 6; ++j) {
        hilbert.set(i, j, 1.0 / static_cast<double>(i + j + 1) - (i == j ? shift : 0.0));
      }
    }
    EXPECT_EQ(isPositiveDefinite(hilbert), shift == 1.08e-7);
  }
}

TEST(Coupling, NegativeAndUnusableNumbersAreTold) {
  IBISPackageModel model = twoPins(1.8e-9, -0.25e-12);
  model.inductance[0].value = -4e-9;
  model.resistance[2].value = 1e300;
  const CoupledPackage package = coupledPackage(model, rows, 0.01);
  EXPECT_TRUE(package.hasBadDiagonal);
  EXPECT_EQ(package.inductance, (std::vector<double>{0.0, 9e-9}));
  EXPECT_EQ(package.resistance, (std::vector<double>{0.1, 0.0}));
  EXPECT_TRUE(package.couplings.empty());
}

TEST(Coupling, InductancesBecomeFactorsAndCapacitancesElements) {
  const CoupledPackage package = coupledPackage(twoPins(1.8e-9, -0.25e-12), rows, 0.01);
  EXPECT_EQ(package.inductance, (std::vector<double>{4e-9, 9e-9}));
  ASSERT_EQ(package.couplings.size(), 1u);
  EXPECT_NEAR(package.couplings[0].k, 0.3, 1e-12);
  ASSERT_EQ(package.mutual.size(), 1u);
  EXPECT_DOUBLE_EQ(package.mutual[0].value, 0.25e-12);
  EXPECT_DOUBLE_EQ(package.capacitance[0], 0.75e-12);
  EXPECT_DOUBLE_EQ(package.capacitance[1], 1.75e-12);
  EXPECT_EQ(package.inductanceScale, 1.0);
}

TEST(Coupling, ResistancesBetweenPinsAreShared) {
  const CoupledPackage package = coupledPackage(twoPins(0.0, 0.0), rows, 0.01);
  EXPECT_EQ(package.resistance, (std::vector<double>{0.1, 0.2}));
  ASSERT_EQ(package.shared.size(), 1u);
  EXPECT_EQ(package.shared[0].first, 0u);
  EXPECT_EQ(package.shared[0].second, 1u);
  EXPECT_EQ(package.shared[0].value, 0.01);
  EXPECT_EQ(package.droppedResistances, 0u);
  EXPECT_EQ(package.droppedCouplings, 0u);
}

TEST(Coupling, SmallResistancesBetweenPinsAreDropped) {
  const CoupledPackage package = coupledPackage(twoPins(0.0, 0.0), rows, 0.08);
  EXPECT_TRUE(package.shared.empty());
  EXPECT_EQ(package.droppedCouplings, 1u);
  EXPECT_EQ(package.droppedResistances, 0u);
}

TEST(Coupling, ResistancesThatAreNotPassiveLoseThoseBetweenPins) {
  IBISPackageModel model = twoPins(0.0, 0.0);
  model.resistance = {{1, 1, 0.1}, {1, 2, 0.3}, {2, 2, 0.2}};
  const CoupledPackage package = coupledPackage(model, rows, 0.01);
  EXPECT_TRUE(package.shared.empty());
  EXPECT_EQ(package.droppedResistances, 1u);
  EXPECT_EQ(package.resistance, (std::vector<double>{0.1, 0.2}));
}

TEST(Coupling, APinLeftOutCountsAsGrounded) {
  const std::int32_t first[] = {1};
  const CoupledPackage package = coupledPackage(twoPins(1.8e-9, -0.25e-12), first, 0.01);
  EXPECT_DOUBLE_EQ(package.capacitance[0], 1e-12);
  EXPECT_TRUE(package.couplings.empty());
}

TEST(Coupling, SmallCouplingsAreDropped) {
  const CoupledPackage package = coupledPackage(twoPins(0.03e-9, 0.0), rows, 0.01);
  EXPECT_TRUE(package.couplings.empty());
  EXPECT_EQ(package.droppedCouplings, 1u);
}

TEST(Coupling, InductancesThatAreNotPassiveAreScaled) {
  const CoupledPackage package = coupledPackage(twoPins(7.2e-9, 0.0), rows, 0.01);
  ASSERT_EQ(package.couplings.size(), 1u);
  EXPECT_LT(package.couplings[0].k, 1.0);
  EXPECT_LT(package.inductanceScale, 1.0);
}

// All of n pins against each other: positive definite for k above -1 / (n - 1) only.
IBISPackageModel opposed(std::int32_t count) {
  IBISPackageModel model;
  for (std::int32_t row = 1; row <= count; ++row) {
    model.inductance.push_back({row, row, 1e-9});
    for (std::int32_t column = row + 1; column <= count; ++column) {
      model.inductance.push_back({row, column, -0.9e-9});
    }
  }
  return model;
}

TEST(Coupling, ManyPinsThatAreFarFromPassiveAreScaledByTheLargestStepThatHelps) {
  std::vector<std::int32_t> all(400);
  std::iota(all.begin(), all.end(), 1);
  const CoupledPackage package = coupledPackage(opposed(400), all, 0.0);
  ASSERT_EQ(package.couplings.size(), 400u * 399u / 2u);
  EXPECT_LT(package.couplings[0].k, 0.0);
  EXPECT_GT(package.couplings[0].k, -1.0 / 399.0);
  EXPECT_LT(package.couplings[0].k / 0.999, -1.0 / 399.0);
}

TEST(Coupling, ANegativeCapacitorStaysInAPassiveNetwork) {
  const CoupledPackage package = coupledPackage(twoPins(0.0, -1.2e-12), rows, 0.01);
  EXPECT_NEAR(package.capacitance[0], -0.2e-12, 1e-24);
  EXPECT_EQ(package.droppedCapacitances, 0u);
}

TEST(Coupling, CapacitancesThatAreNotPassiveLoseTheNegativeOnes) {
  const CoupledPackage package = coupledPackage(twoPins(0.0, -3e-12), rows, 0.01);
  EXPECT_EQ(package.capacitance, (std::vector<double>{0.0, 0.0}));
  EXPECT_EQ(package.droppedCapacitances, 2u);
}

TEST(Coupling, ANegativeCapacitorBetweenPinsGoesLikewise) {
  const CoupledPackage package = coupledPackage(twoPins(0.0, 3e-12), rows, 0.01);
  EXPECT_TRUE(package.mutual.empty());
  EXPECT_EQ(package.droppedCapacitances, 1u);
}

}  // namespace
}  // namespace ibis
