#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "harness/harness.h"
#include "model/estimate_waveforms.h"

namespace ibis::testing {
namespace {

/// The estimation once more, as plain as can be, to hold the library's results against.
class Recomputation {
 public:
  /// One waveform's times, corner voltages and fixture.
  struct Waveform {
    std::vector<double> time;
    std::array<std::vector<double>, 3> voltages;
    std::array<double, 3> fixtureVoltages{};
  };

  explicit Recomputation(const IBISModel& model) : model_(model) {
    rising0.time = timePoints(model.rampDtRise, delayFactor);
    rising1.time = timePoints(model.rampDtRise, 0.0);
    falling0.time = timePoints(model.rampDtFall, 0.0);
    falling1.time = timePoints(model.rampDtFall, delayFactor);
    for (int corner = 0; corner < 3; ++corner) solve(corner);
  }

  Waveform rising0, rising1, falling0, falling1;
  int mostPasses = 0;  ///< Of all Newton loops.

 private:
  static constexpr double delayFactor = 1.6666666666666665;
  static constexpr double bandFraction = 0.6000000000000001;

  struct Point {
    double current = 0.0, slope = 0.0;
  };

  /// A residual and its slope at one unknown, and the voltage that stands for it.
  struct Residual {
    double voltage, f, d;
  };

  static std::vector<double> timePoints(const IBISTriple& ramp, double factor) {
    const double shortest = std::min(ramp.typ, std::min(ramp.min, ramp.max));
    const double longest = std::max(ramp.typ, std::max(ramp.min, ramp.max));
    const double step = shortest / 100;
    const double end = step + longest * (factor + 1.9999999999999998);
    std::vector<double> points;
    double t = shortest * factor;
    if (t > 0.0) points.push_back(0.0);
    while (t < end) {
      points.push_back(t);
      t += step;
    }
    return points;
  }

  static Point evaluate(const IBISTable& table, double x, int corner) {
    if (!table.present) return {};
    const YVector<double>& currents =
        corner == 0 ? table.typ : (corner == 1 ? table.max : table.min);
    const std::int32_t last = table.voltage.size() - 1;
    const bool descending = table.direction == IBISTable::descending;
    const auto place = [&](std::int32_t position) {
      return descending ? last - position : position;
    };
    std::int32_t position = 1;
    while (position < last && table.voltage[place(position)] < x) ++position;
    const double x0 = table.voltage[place(position - 1)];
    const double x1 = table.voltage[place(position)];
    const double y0 = currents[place(position - 1)];
    const double y1 = currents[place(position)];
    return {(y1 - y0) / (x1 - x0) * (x - x0) + y0, (y1 - y0) / (x1 - x0)};
  }

  template <class Function>
  double newton(Function residual) {
    double x = 0.0;
    double voltage = 0.0;
    for (int pass = 1; pass <= 10; ++pass) {
      mostPasses = std::max(mostPasses, pass);
      const Residual r = residual(x);
      voltage = r.voltage;
      const double dx = -r.f / r.d;
      x += dx;
      if (std::fabs(dx) < 1e-10) break;
    }
    return voltage;
  }

  void solve(int corner) {
    const auto at = [corner](const IBISTriple& triple) {
      return corner == 0 ? triple.typ : (corner == 1 ? triple.max : triple.min);
    };
    const double vpu = at(model_.pullupReference);
    const double vpd = at(model_.pulldownReference);
    const double r = model_.rLoad.value;
    const double oneOverR = 1 / r;
    const auto high = [&](double load) {
      return newton([&, load](double x) {
        const double v = vpu + x;
        const Point p = evaluate(model_.pullup, vpu - v, corner);
        return Residual{v, (v - load) / r + p.current, oneOverR - p.slope};
      });
    };
    const double vHighGnd = high(vpd);
    const double vHighPwr = high(vpu);
    const double vLowGnd = newton([&](double x) {
      const Point p = evaluate(model_.pulldown, x - vpd, corner);
      return Residual{x, x / r + p.current, oneOverR + p.slope};
    });
    const double vLowPwr = newton([&](double x) {
      const Point p = evaluate(model_.pulldown, x - vpd, corner);
      return Residual{x, (x - vpu) / r + p.current, oneOverR + p.slope};
    });
    const double rise = at(model_.rampDtRise);
    const double fall = at(model_.rampDtFall);
    fill(rising0, corner, rise, rise / bandFraction, vLowGnd, vHighGnd, vpd);
    fill(rising1, corner, rise, 0.0, vLowPwr, vHighPwr, vpu);
    fill(falling0, corner, fall, 0.0, vHighGnd, vLowGnd, vpd);
    fill(falling1, corner, fall, fall / bandFraction, vHighPwr, vLowPwr, vpu);
  }

  static double bend(double u) {
    const double magnitude = std::fabs(u);
    return magnitude > 50.0 ? magnitude - std::log(2.0) : std::log(std::cosh(u));
  }

  static void fill(Waveform& waveform, int corner, double duration, double delay, double a,
                   double b, double fixtureVoltage) {
    const double full = duration / bandFraction * 1.2;
    const double d = b - a;
    const double k = 30.0 / d;
    const auto index = static_cast<std::size_t>(corner);
    for (double t : waveform.time) {
      const double s = (t - delay) * 1.2 / full * d + a - d * 0.09999999999999998;
      const double p = bend((s - a) * k);
      const double q = bend((s - b) * k);
      waveform.voltages[index].push_back(((p - q) / k + (a + b)) * 0.5);
    }
    waveform.fixtureVoltages[index] = fixtureVoltage;
  }

  const IBISModel& model_;
};

/// Voltages with a mark instead of each not-a-number, which would not equal itself.
std::vector<double> comparable(std::vector<double> values) {
  for (double& value : values) {
    if (std::isnan(value)) value = -91.0;
  }
  return values;
}

std::vector<double> comparable(const YVector<double>& list) {
  return comparable(std::vector<double>(list.begin(), list.end()));
}

void expectSame(const IBISWaveform& waveform, const Recomputation::Waveform& expected) {
  EXPECT_EQ(comparable(waveform.time), expected.time);
  EXPECT_EQ(comparable(waveform.typ), comparable(expected.voltages[0]));
  EXPECT_EQ(comparable(waveform.max), comparable(expected.voltages[1]));
  EXPECT_EQ(comparable(waveform.min), comparable(expected.voltages[2]));
  EXPECT_EQ(waveform.vFixture.value, expected.fixtureVoltages[0]);
  EXPECT_EQ(waveform.vFixtureMax.value, expected.fixtureVoltages[1]);
  EXPECT_EQ(waveform.vFixtureMin.value, expected.fixtureVoltages[2]);
}

/// Estimates a model, holds all of it against the recomputation, and gives the most passes.
int expectSameEstimate(IBISModel model) {
  const Recomputation expected(model);
  Recorder told;
  estimateWaveforms(model, told);
  drawWaveforms(model);
  EXPECT_EQ(model.risingWaveforms.size(), 2U);
  EXPECT_EQ(model.fallingWaveforms.size(), 2U);
  expectSame(model.risingWaveforms[0], expected.rising0);
  expectSame(model.risingWaveforms[1], expected.rising1);
  expectSame(model.fallingWaveforms[0], expected.falling0);
  expectSame(model.fallingWaveforms[1], expected.falling1);
  return expected.mostPasses;
}

/// The one model of a text, resolved as far as the references that the text gives.
IBISModel read(const std::string& text) {
  Parsed parsed("[Component] U1\n[Model] X\n" + text);
  EXPECT_EQ(parsed.errors(), Texts());
  IBISModel model = parsed.model();
  // These outlive the text that they were read from.
  model.name = "X";
  model.spiceName = "X";
  return model;
}

const std::string ramp =
    "[Ramp]\ndV/dt_r 1.9/0.53n 1.7/0.81n 2.1/0.37n\n"
    "dV/dt_f 1.8/0.47n 1.6/0.72n 2.0/0.31n\n";

const std::string references = "[Pullup Reference] 3.3 3.0 3.6\n[Pulldown Reference] 0 0 0\n";

const std::string pulldown =
    "[Pulldown]\n-3.3 -97m -71m -0.13\n-1 -43m -31m -58m\n0 0 0 0\n0.4 17m 12m 23m\n"
    "0.9 31m 22m 42m\n1.7 44m 30m 61m\n3.3 49m 33m 69m\n6.6 51m 34m 72m\n";

const std::string pullup =
    "[Pullup]\n-3.3 89m 63m 0.12\n-1 38m 27m 52m\n0 0 0 0\n0.6 -19m -13m -27m\n"
    "1.5 -35m -24m -49m\n3.3 -46m -31m -65m\n6.6 -49m -33m -70m\n";

TEST(SolveCorner, MatchesARecomputationForAPushPullDriver) {
  expectSameEstimate(read("Model_type Output\n" + references + pulldown + pullup + ramp));
}

TEST(SolveCorner, MatchesARecomputationForAnotherLoad) {
  for (const std::string load : {"R_load = 500\n", "R_load = 1.5\n", "R_load = 33k\n"}) {
    expectSameEstimate(read("Model_type I/O\n" + references + pulldown + pullup + ramp + load));
  }
}

TEST(SolveCorner, MatchesARecomputationForAnEclDriver) {
  IBISModel model = read("[Pullup Reference] 0 0 0\n[Pulldown Reference] -2 -2.1 -1.9\n" +
                         pulldown + pullup + ramp);
  model.type = ModelType::outputEcl;
  expectSameEstimate(model);
  model.type = ModelType::threeStateEcl;
  expectSameEstimate(model);
}

TEST(SolveCorner, MatchesARecomputationForOpenDrivers) {
  expectSameEstimate(read("Model_type Open_drain\n" + references + pulldown + ramp));
  expectSameEstimate(read("Model_type I/O_open_source\n" + references + pullup + ramp));
}

TEST(SolveCorner, MatchesARecomputationForTablesThatFall) {
  expectSameEstimate(
      read("Model_type 3-state\n" + references +
           "[Pulldown]\n6.6 51m 34m 72m\n1.7 44m 30m 61m\n0 0 0 0\n-1 -43m NA NA\n"
           "[Pullup]\n3.3 -46m -31m -65m\n0.6 -19m -13m -27m\n0 0 0 0\n-1 38m 27m\n" +
           ramp));
}

TEST(SolveCorner, MatchesARecomputationForTablesOfOnePointAndOfNone) {
  expectSameEstimate(
      read("Model_type Output\n" + references + "[Pulldown]\n1.5 20m\n[Pullup]\n2 -30m\n" + ramp));
  expectSameEstimate(read("Model_type Output\n" + references + "[Pulldown]\n[Pullup]\n" + ramp));
}

TEST(SolveCorner, MatchesARecomputationForLoadsThatAreNone) {
  for (const std::string load : {"0", "-50", "nan", "inf"}) {
    expectSameEstimate(read("Model_type Output\n" + references + pulldown + pullup + ramp +
                            "R_load = " + load + "\n"));
  }
}

// Newton steps from 0 V to 5 V and back; the tenth pass begins at 5 V and leads back to 0 V.
TEST(SolveCorner, ReportsThePointOfTheTenthPass) {
  IBISModel model = read(
      "Model_type Output\n[Pullup Reference] 4 4 4\n[Pulldown Reference] 0 0 0\n"
      "[Pulldown]\n-8 -1 -1 -1\n1 -1 -1 -1\n2 6 6 6\n8 12 12 12\n"
      "[Pullup]\n-8 8 8 8\n0 0 0 0\n8 -8 -8 -8\n"
      "[Ramp]\ndV/dt_r 1/1 1/1 1/1\ndV/dt_f 1/1 1/1 1/1\nR_load = 1\n");
  EXPECT_EQ(expectSameEstimate(model), 10);
  Recorder told;
  estimateWaveforms(model, told);
  drawWaveforms(model);
  IBISWaveform expected;
  expected.time = model.risingWaveforms[1].time;
  fillWaveform(expected, {.duration = 1.0, .vStart = 5.0, .vEnd = 4.0});
  EXPECT_EQ(model.risingWaveforms[1].typ, expected.typ);
}

// The first step leads to 4 V, the second by -3e / (1 + e) from there.
TEST(SolveCorner, StopsAtAStepBelowItsTolerance) {
  const std::pair<double, int> rows[] = {
      {0x1p-20, 3}, {0x1p-28, 3}, {0x1p-34, 3}, {0x1p-36, 2}, {0x1p-45, 2}};
  for (const auto& [e, passes] : rows) {
    IBISModel model = read(
        "Model_type Output\n[Pullup Reference] 4 4 4\n[Pulldown Reference] 0 0 0\n"
        "[Pulldown]\n-8 0 0 0\n1 0 0 0\n9 0 0 0\n[Pullup]\n-8 9 9 9\n8 -7 -7 -7\n"
        "[Ramp]\ndV/dt_r 1/1 1/1 1/1\ndV/dt_f 1/1 1/1 1/1\nR_load = 1\n");
    for (auto* list : {&model.pulldown.typ, &model.pulldown.max, &model.pulldown.min}) {
      list->at(2) = 8 * e;
    }
    EXPECT_EQ(expectSameEstimate(model), passes) << e;
  }
}

/// Numbers that are the same wherever the test runs.
class Numbers {
 public:
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_() % 10007) / 10007;
  }

  IBISTriple triple(double low, double high) {
    return {.present = true,
            .typ = between(low, high),
            .max = between(low, high),
            .min = between(low, high)};
  }

  /// Currents that need not grow, so that some loops come to no end.
  IBISTable table(double current) {
    IBISTable table;
    table.present = true;
    table.direction = IBISTable::ascending;
    for (double v = between(-5, -3); v < 8; v += between(0.1, 2)) {
      table.voltage.append(v);
      table.typ.append(current * v + between(-0.05, 0.05));
      table.max.append(current * v + between(-0.05, 0.05));
      table.min.append(current * v + between(-0.05, 0.05));
    }
    return table;
  }

 private:
  std::mt19937 engine_{20240501};
};

TEST(SolveCorner, MatchesARecomputationForManyModels) {
  Numbers numbers;
  int endless = 0;
  for (int i = 0; i < 100; ++i) {
    IBISModel model;
    model.type = ModelType::inputOutput;
    model.pullupReference = numbers.triple(1, 5);
    model.pulldownReference = numbers.triple(-3, 1);
    model.pulldown = numbers.table(0.02);
    model.pullup = numbers.table(-0.02);
    model.rampDtRise = numbers.triple(1e-10, 3e-10);
    model.rampDtFall = numbers.triple(1e-9, 3e-9);
    model.rLoad.value = numbers.between(20, 200);
    if (expectSameEstimate(model) == 10) ++endless;
  }
  EXPECT_GT(endless, 0);    // the limit was met
  EXPECT_LT(endless, 100);  // and so was the tolerance
}

}  // namespace
}  // namespace ibis::testing
