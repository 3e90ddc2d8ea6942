#include <cmath>
#include <random>

#include "harness/harness.h"
#include "model/iv_table.h"

namespace ibis::testing {
namespace {

struct Point {
  double value;
  double slope;
  friend bool operator==(const Point&, const Point&) = default;
};

std::ostream& operator<<(std::ostream& out, const Point& point) {
  return out << point.value << " with slope " << point.slope;
}

Point evaluated(const IBISTable& table, double x, int corner = corner::typ) {
  Point point{91.0, 92.0};
  evaluateTable(table, point.value, point.slope, x, corner);
  return point;
}

IBISTable typTable(std::int32_t direction, YVector<double> voltage, YVector<double> typ) {
  return {true, direction, std::move(voltage), std::move(typ), {}, {}};
}

IBISTable ascendingTable() {
  return {.present = true,
          .direction = IBISTable::ascending,
          .voltage = {0, 1, 3},
          .typ = {0, 2, 3},
          .max = {0, 4, 6},
          .min = {0, 1, 1.5}};
}

// The same curve from its far end.
IBISTable descendingTable() {
  return {.present = true,
          .direction = IBISTable::descending,
          .voltage = {3, 1, 0},
          .typ = {3, 2, 0},
          .max = {6, 4, 0},
          .min = {1.5, 1, 0}};
}

TEST(EvaluateTable, InterpolatesAndExtendsTheEndSegmentsInBothDirections) {
  const std::pair<double, Point> cases[] = {
      {-1, {-2, 2}},      {-0.5, {-1, 2}}, {0, {0, 2}},   {0.5, {1, 2}}, {1, {2, 2}},
      {1.5, {2.25, 0.5}}, {2, {2.5, 0.5}}, {3, {3, 0.5}}, {5, {4, 0.5}}, {103, {53, 0.5}},
  };
  for (const auto& [x, expected] : cases) {
    EXPECT_EQ(evaluated(ascendingTable(), x), expected) << x;
    EXPECT_EQ(evaluated(descendingTable(), x), expected) << x;
  }
}

TEST(EvaluateTable, TakesTheCurrentsOfTheCorner) {
  for (const IBISTable& table : {ascendingTable(), descendingTable()}) {
    EXPECT_EQ(evaluated(table, 0.5, 0), (Point{1, 2}));
    EXPECT_EQ(evaluated(table, 0.5, 1), (Point{2, 4}));
    EXPECT_EQ(evaluated(table, 0.5, 2), (Point{0.5, 1}));
    EXPECT_EQ(evaluated(table, 0.5, 3), (Point{1, 2}));
    EXPECT_EQ(evaluated(table, 0.5, -1), (Point{1, 2}));
  }
}

TEST(EvaluateTable, DrawsTheLineThroughTwoPoints) {
  const IBISTable rising = typTable(IBISTable::ascending, {1, 2}, {4, 8});
  const IBISTable falling = typTable(IBISTable::descending, {2, 1}, {8, 4});
  for (double x : {-1.0, 1.0, 1.5, 2.0, 9.0}) {
    EXPECT_EQ(evaluated(rising, x), (Point{4 * x, 4}));
    EXPECT_EQ(evaluated(falling, x), (Point{4 * x, 4}));
  }
}

TEST(EvaluateTable, DrawsTheLineOfOnePointThroughTheOrigin) {
  for (std::int32_t direction : {IBISTable::ascending, IBISTable::descending}) {
    const IBISTable table = typTable(direction, {2}, {6});
    EXPECT_EQ(evaluated(table, -1), (Point{-3, 3}));
    EXPECT_EQ(evaluated(table, 2), (Point{6, 3}));
    EXPECT_EQ(evaluated(table, 5), (Point{15, 3}));
  }
}

TEST(EvaluateTable, GivesNoNumberForAnEmptyTable) {
  for (std::int32_t direction : {IBISTable::ascending, IBISTable::descending}) {
    const IBISTable table = typTable(direction, {}, {});
    EXPECT_TRUE(std::isnan(evaluated(table, 1.0).value));
    EXPECT_TRUE(std::isnan(evaluated(table, 1.0).slope));
  }
}

TEST(EvaluateTable, ReadsAMissingCurrentAsZero) {
  const IBISTable table = typTable(IBISTable::ascending, {0, 1, 2}, {4});
  EXPECT_EQ(evaluated(table, 0.5), (Point{2, -4}));
  EXPECT_EQ(evaluated(table, 1.5), (Point{0, 0}));
  EXPECT_EQ(evaluated(table, 0.5, corner::max), (Point{0, 0}));
}

TEST(EvaluateTable, WritesNothingForATableThatIsNotPresent) {
  IBISTable table = ascendingTable();
  table.present = false;
  EXPECT_EQ(evaluated(table, 0.5), (Point{91, 92}));
}

// The first point from the low end that is not below x ends the segment, or the last point does.
Point evaluatedFromTheLowEnd(const std::vector<std::pair<double, double>>& points, double x) {
  std::size_t upper = 1;
  while (upper + 1 < points.size() && points[upper].first < x) ++upper;
  const auto [x0, y0] = points[upper - 1];
  const auto [x1, y1] = points[upper];
  return {(y1 - y0) / (x1 - x0) * (x - x0) + y0, (y1 - y0) / (x1 - x0)};
}

TEST(EvaluateTable, FindsTheSegmentThatALinearSearchFinds) {
  std::mt19937 random(20240229);
  std::uniform_real_distribution<double> current(-1.0, 1.0);
  for (std::int32_t count = 2; count <= 40; ++count) {
    std::vector<std::pair<double, double>> points;
    for (double voltage = -3.3; std::ssize(points) < count; voltage += 0.1 + current(random) / 20) {
      points.emplace_back(voltage, current(random));
    }
    IBISTable rising = typTable(IBISTable::ascending, {}, {});
    IBISTable falling = typTable(IBISTable::descending, {}, {});
    for (std::int32_t i = 0; i < count; ++i) {
      rising.voltage.append(points[static_cast<std::size_t>(i)].first);
      rising.typ.append(points[static_cast<std::size_t>(i)].second);
      falling.voltage.append(points[static_cast<std::size_t>(count - 1 - i)].first);
      falling.typ.append(points[static_cast<std::size_t>(count - 1 - i)].second);
    }
    std::vector<double> places = {-100.0, 100.0};
    for (const auto& [voltage, unused] : points) {
      places.insert(places.end(), {voltage, voltage - 0.01, voltage + 0.01});
    }
    for (double x : places) {
      EXPECT_EQ(evaluated(rising, x), evaluatedFromTheLowEnd(points, x)) << x;
      EXPECT_EQ(evaluated(falling, x), evaluatedFromTheLowEnd(points, x)) << x;
    }
  }
}

}  // namespace
}  // namespace ibis::testing
