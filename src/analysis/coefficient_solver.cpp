#include "analysis/coefficient_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ibis {
namespace {

constexpr double regularisation = 1e-5;
constexpr double smallestCurrent = 1e-10;  // amperes
constexpr double priorLow = -0.2;
constexpr double priorHigh = 1.2;
constexpr double openRegularisation = 1e-2;  // of the largest current
constexpr double tellingShare = 1e-3;        // of the largest sum of squares

double squared(double x) { return x * x; }

double bounded(double k) { return std::clamp(k, smallestCoefficient, largestCoefficient); }

// The normal equations m11 u + m12 d = r1, m12 u + m22 d = r2 of a positive definite form.
struct Normal {
  double m11 = 0.0, m12 = 0.0, m22 = 0.0, r1 = 0.0, r2 = 0.0;

  double cost(Coefficients k) const {
    return k.up * (0.5 * m11 * k.up + m12 * k.down - r1) + k.down * (0.5 * m22 * k.down - r2);
  }
};

double prior(const CurrentRow& a, const CurrentRow& b) {
  const double da = a.up - a.down;
  const double db = b.up - b.down;
  const double square = squared(da) + squared(db);
  if (!(square > squared(smallestCurrent))) return 0.5;
  const double up = ((a.current - a.down) * da + (b.current - b.down) * db) / square;
  return std::clamp(up, priorLow, priorHigh);
}

Normal normalEquations(const CurrentRow& a, const CurrentRow& b) {
  Normal n;
  n.m11 = squared(a.up) + squared(b.up);
  n.m12 = a.up * a.down + b.up * b.down;
  n.m22 = squared(a.down) + squared(b.down);
  const double l = regularisation * std::sqrt((n.m11 + n.m22) / 2.0) + smallestCurrent;
  const double up = prior(a, b);
  n.m11 += l * l;
  n.m22 += l * l;
  n.r1 = a.up * a.current + b.up * b.current + l * l * up;
  n.r2 = a.down * a.current + b.down * b.current + l * l * (1.0 - up);
  return n;
}

bool isInside(Coefficients k) { return k.up == bounded(k.up) && k.down == bounded(k.down); }

// The smallest cost on the four edges of the box.
Coefficients bestOnBounds(const Normal& n) {
  Coefficients best;
  double bestCost = std::numeric_limits<double>::infinity();
  for (const double bound : {smallestCoefficient, largestCoefficient}) {
    const Coefficients onUp{bound, bounded((n.r2 - n.m12 * bound) / n.m22)};
    const Coefficients onDown{bounded((n.r1 - n.m12 * bound) / n.m11), bound};
    for (const Coefficients k : {onUp, onDown}) {
      if (n.cost(k) >= bestCost) continue;
      best = k;
      bestCost = n.cost(k);
    }
  }
  return best;
}

// The sums over all waveforms at one time.
struct OpenSums {
  double square = 0.0;   // of the table's currents
  double product = 0.0;  // of the table's and the pad's currents
};

std::vector<OpenSums> openSums(std::span<const CurrentRow> rows, std::size_t perTime,
                               DriverKind driver) {
  std::vector<OpenSums> sums(rows.size() / perTime);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double table = driver == DriverKind::openSource ? rows[i].up : rows[i].down;
    sums[i / perTime].square += squared(table);
    sums[i / perTime].product += table * rows[i].current;
  }
  return sums;
}

double ratio(const OpenSums& sums) { return bounded(sums.product / sums.square); }

// The line between the neighbours that can tell, at every time.
std::vector<double> lineBetweenTelling(const std::vector<OpenSums>& sums,
                                       std::span<const double> time, double limit) {
  Curve telling;
  for (std::size_t i = 0; i < sums.size(); ++i) {
    if (!(sums[i].square > limit)) continue;
    telling.x.push_back(time[i]);
    telling.y.push_back(ratio(sums[i]));
  }
  std::vector<double> line(sums.size());
  if (telling.empty()) return line;
  CurveReader reader(telling);
  for (std::size_t i = 0; i < sums.size(); ++i) {
    line[i] = reader(std::clamp(time[i], telling.x.front(), telling.x.back()));
  }
  return line;
}

}  // namespace

Coefficients solvePair(const CurrentRow& first, const CurrentRow& second) {
  const Normal n = normalEquations(first, second);
  // Solved for the distance from the prior, so that nothing cancels where the rows say the same.
  const double up = prior(first, second);
  const double a = first.current - first.up * up - first.down * (1.0 - up);
  const double b = second.current - second.up * up - second.down * (1.0 - up);
  const double r1 = first.up * a + second.up * b;
  const double r2 = first.down * a + second.down * b;
  const double determinant = n.m11 * n.m22 - n.m12 * n.m12;
  const Coefficients k{up + (r1 * n.m22 - r2 * n.m12) / determinant,
                       1.0 - up + (r2 * n.m11 - r1 * n.m12) / determinant};
  return isInside(k) ? k : bestOnBounds(n);
}

Coefficients solveComplement(const CurrentRow& row) {
  const double difference = row.up - row.down;
  if (!(std::fabs(difference) > smallestCurrent)) return {0.5, 0.5};
  const double up = bounded((row.current - row.down) / difference);
  return {up, bounded(1.0 - up)};
}

std::vector<double> solveOpen(std::span<const CurrentRow> rows, std::size_t perTime,
                              std::span<const double> time, DriverKind driver) {
  const std::vector<OpenSums> sums = openSums(rows, perTime, driver);
  double largest = 0.0;
  for (const OpenSums& each : sums) largest = std::max(largest, each.square);
  const double pull = squared(openRegularisation) * largest / static_cast<double>(perTime);
  std::vector<double> k = lineBetweenTelling(sums, time, tellingShare * largest);
  for (std::size_t i = 0; i < k.size(); ++i) {
    const double weight = sums[i].square + pull;
    if (weight > 0.0) k[i] = bounded((sums[i].product + pull * k[i]) / weight);
  }
  return k;
}

}  // namespace ibis
