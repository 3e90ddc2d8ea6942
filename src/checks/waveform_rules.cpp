// The rules about waveforms, each by itself and beside the others of its model.

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "checks/families.h"
#include "checks/load_line.h"
#include "checks/outlier.h"

namespace ibis::checks {
namespace {

std::string percent(double part) { return shortNumber(std::round(100.0 * part), 3); }

// When a curve first passes a level, by straight lines; not a number for never.
double crossing(const Curve& curve, double level) {
  for (std::size_t i = 1; i < curve.x.size(); ++i) {
    const double a = curve.y[i - 1] - level;
    const double b = curve.y[i] - level;
    if (a == 0.0) return curve.x[i - 1];
    if (a * b > 0.0 || a == b) continue;
    return onLine(a, curve.x[i - 1], b, curve.x[i], 0.0);
  }
  return notGiven;
}

using Fixture = std::array<double, 7>;

Fixture fixtureOf(const Waveform& waveform) {
  Fixture fixture = {waveform.rFixture.value, waveform.vFixture.value, waveform.cFixture.value,
                     waveform.lFixture.value, waveform.rDut.value,     waveform.lDut.value,
                     waveform.cDut.value};
  for (double& value : fixture) {
    if (std::isnan(value)) value = 0.0;
  }
  return fixture;
}

class WaveformChecker {
 public:
  WaveformChecker(const View& view, const ModelView& model, const ModelCurves& curves,
                  Findings& findings)
      : view_(view),
        findings_(findings),
        model_(&model),
        curves_(curves),
        supply_(model.supply()),
        name_(model.name) {}

  void check() {
    for (const Waveform& waveform : model_->waveforms) checkWaveform(waveform);
    checkTogether();
  }

 private:
  std::string keyword() const { return waveform_->rises ? "Rising Waveform" : "Falling Waveform"; }
  Spot head() const { return view_.spotOf(view_.block(waveform_->rows.block)); }
  bool isReal() const { return !model_->isDiff() && !model_->hasExternalModel; }

  const CornerCurves& curvesOf(const Waveform& waveform) const {
    return curves_.waveforms[static_cast<std::size_t>(&waveform - model_->waveforms.data())];
  }

  Spot cell(std::size_t row, std::size_t column) const {
    const SourceLine& line = view_.syntax.lines()[waveform_->rows.lines[row]];
    const std::vector<Word> words = splitRow(line);
    return column < words.size() ? view_.spotOf(line, words[column], waveform_->rows.block)
                                 : view_.spotOf(line, waveform_->rows.block);
  }

  void checkWaveform(const Waveform& waveform) {
    waveform_ = &waveform;
    checkFixture();
    const Rows& rows = waveform.rows;
    if (rows.size() < 2) {
      findings_.add(Rule::waveformTooFewPoints, head(),
                    {keyword(), name_, rows.size() == 0 ? "no row" : "one row"});
      return;
    }
    const std::size_t limit = view_.version != 0 && view_.version < 40 ? 100 : 1000;
    if (rows.size() > limit) {
      findings_.add(Rule::waveformTooManyPoints, head(),
                    {keyword(), name_, std::to_string(rows.size()), std::to_string(limit)});
    }
    if (!rows.isSound || !checkTimes()) return;
    const CornerCurves& curves = curvesOf(waveform);
    for (std::size_t c = 0; c < corners; ++c) checkOutlier(c, curves[c]);
    if (curves[typ].empty()) return;
    checkShape(curves[typ]);
    checkSettling(curves);
    checkSpeedOfCorners(curves);
  }

  void checkFixture() {
    std::vector<std::string> missing;
    if (!waveform_->rFixture.given) missing.emplace_back("R_fixture");
    if (!waveform_->vFixture.given) missing.emplace_back("V_fixture");
    const std::uint32_t block = waveform_->rows.block;
    const bool isMistyped = findings_.wasTold(Rule::waveformUnknownParameter, model_->section) ||
                            findings_.wasTold(Rule::numericMissingValue, model_->section);
    if (!missing.empty() && !isMistyped) {
      findings_.add(Rule::waveformFixtureMissing, head(), {keyword(), name_, joined(missing)});
    }
    if (waveform_->rFixture.value <= 0.0 && !findings_.hasWrongNumber(block)) {
      findings_.add(Rule::waveformRFixture, waveform_->rFixture.spot,
                    {keyword(), name_, quantity(waveform_->rFixture.value, "ohm")});
    }
    const double voltage = waveform_->vFixture.value;
    const double margin = 0.1 * supply_ + 0.05;
    const double low = std::min(model_->pulldownReference(typ), model_->pullupReference(typ));
    const double high = std::max(model_->pulldownReference(typ), model_->pullupReference(typ));
    if (supply_ > 0.0 && (voltage < low - margin || voltage > high + margin)) {
      findings_.add(
          Rule::waveformVFixtureOutside, waveform_->vFixture.spot,
          {keyword(), name_, quantity(voltage, "V"), quantity(low, "V"), quantity(high, "V")});
    }
  }

  // Whether times strictly rise.
  bool checkTimes() {
    const std::vector<double>& time = waveform_->rows.x;
    bool isSound = true;
    for (std::size_t i = 1; i < time.size(); ++i) {
      if (time[i] > time[i - 1]) continue;
      isSound = false;
      findings_.addOnce(Rule::waveformTimeOrder, cell(i, 0),
                        {keyword(), name_, quantity(time[i - 1], "s"), quantity(time[i], "s"), ""});
    }
    if (!isSound) return false;
    if (time.back() > 10e-6 || time.back() < 20e-12) {
      findings_.add(Rule::waveformTimeImplausible, cell(time.size() - 1, 0),
                    {keyword(), name_, quantity(time.back(), "s")});
    }
    if (time.front() != 0.0) {
      findings_.add(Rule::waveformStart, cell(0, 0),
                    {keyword(), name_, quantity(time.front(), "s")});
    }
    return true;
  }

  void checkOutlier(std::size_t c, const Curve& curve) {
    const auto found = findOutlier(curve.x, curve.y, {.ofSpan = 0.1, .atLeast = 50e-3});
    if (!found) return;
    const std::size_t i = *found;
    const auto place = std::ranges::find(waveform_->rows.x, curve.x[i]);
    const double expected =
        onLine(curve.x[i - 1], curve.y[i - 1], curve.x[i + 1], curve.y[i + 1], curve.x[i]);
    findings_.addOnce(Rule::waveformOutlier,
                      cell(static_cast<std::size_t>(place - waveform_->rows.x.begin()), c + 1),
                      {keyword(), name_, std::string(cornerNames[c]), quantity(curve.y[i], "V"),
                       quantity(curve.x[i], "s"), quantity(expected, "V"), ""});
  }

  void checkShape(const Curve& curve) {
    const auto [least, most] = std::ranges::minmax(curve.y);
    const double span = most - least;
    const double rise = curve.y.back() - curve.y.front();
    const bool isWrongWay = waveform_->rises ? rise < 0.0 : rise > 0.0;
    if (isWrongWay && std::abs(rise) > 0.1 * span && span > 50e-3 && isReal()) {
      findings_.add(Rule::waveformDirection, head(),
                    {keyword(), name_, rise < 0.0 ? "falls" : "rises",
                     quantity(curve.y.front(), "V"), quantity(curve.y.back(), "V")});
    }
    const bool isPushPull = model_->isElectrical() && model_->isPushPull();
    if (supply_ > 0.0 && span < 0.02 * supply_ && isPushPull) {
      findings_.add(Rule::waveformNoSwing, head(), {keyword(), name_, quantity(span, "V")});
      return;
    }
    if (std::abs(rise) > 50e-3) checkEdge(curve, rise);
  }

  void checkEdge(const Curve& curve, double rise) {
    const double first = curve.y.front();
    const double begin = crossing(curve, first + 0.1 * rise);
    const double end = crossing(curve, first + 0.9 * rise);
    std::size_t inside = 0;
    for (const double time : curve.x) inside += time >= begin && time <= end ? 1 : 0;
    if (inside < 3 && end > begin) {
      findings_.add(Rule::waveformEdgeCoarse, head(),
                    {keyword(), name_, countOf(inside, "point"), quantity(end - begin, "s")});
    }
    const double window = curve.x.back() - curve.x.front();
    const double idle = (crossing(curve, first + 0.02 * rise) - curve.x.front()) / window;
    if (idle > 0.5) findings_.add(Rule::waveformLeadIn, head(), {keyword(), name_, percent(idle)});
    const double step = std::abs((curve.y[1] - first) / rise);
    if (step > 0.2) {
      findings_.add(Rule::waveformAbruptStart, head(), {keyword(), name_, percent(step)});
    }
  }

  void checkSettling(const CornerCurves& curves) {
    std::size_t worst = typ;
    double most = 0.0;
    for (std::size_t c = 0; c < corners; ++c) {
      const Curve& curve = curves[c];
      if (curve.x.size() < 5) continue;
      const double last = curve.y.back();
      const double swing = std::abs(last - curve.y.front());
      const double from = curve.x.back() - 0.1 * (curve.x.back() - curve.x.front());
      if (swing <= 50e-3) continue;
      for (std::size_t i = 0; i < curve.x.size(); ++i) {
        const double moved = std::abs(curve.y[i] - last) / swing;
        if (curve.x[i] < from || moved <= most) continue;
        most = moved;
        worst = c;
      }
    }
    if (most <= 0.05) return;
    Finding& told =
        findings_.add(Rule::waveformNotSettled, head(),
                      {keyword(), name_, std::string(cornerNames[worst]), percent(most)});
    if (most <= 0.1) told.diagnostic.severity = Severity::note;
  }

  void checkSpeedOfCorners(const CornerCurves& curves) {
    double times[corners];
    for (std::size_t c = 0; c < corners; ++c) {
      const Curve& curve = curves[c];
      if (curve.empty()) return;
      const double rise = curve.y.back() - curve.y.front();
      times[c] = crossing(curve, curve.y.front() + 0.8 * rise) -
                 crossing(curve, curve.y.front() + 0.2 * rise);
    }
    const bool isSwapped =
        times[min] > 0.0 && times[min] < 0.9 * times[typ] && times[max] > 1.1 * times[typ];
    if (!isSwapped) return;
    findings_.add(Rule::waveformCornersSwapped, head(),
                  {keyword(), name_, quantity(times[min], "s"), quantity(times[typ], "s"),
                   quantity(times[max], "s")});
  }

  // Rules about all waveforms of a model.

  void checkTogether() {
    std::map<std::pair<bool, Fixture>, const Waveform*> byFixture;
    std::size_t edges[2] = {0, 0};
    for (const Waveform& waveform : model_->waveforms) {
      waveform_ = &waveform;
      ++edges[waveform.rises ? 0 : 1];
      const auto [first, isFirst] =
          byFixture.try_emplace({waveform.rises, fixtureOf(waveform)}, &waveform);
      if (isFirst || !waveform.rFixture.given) continue;
      addNote(findings_.add(Rule::waveformDuplicateFixture, head(), {keyword(), name_}),
              view_.spotOf(view_.block(first->second->rows.block)).line, "the other one is here");
    }
    if (model_->waveforms.empty()) return;
    waveform_ = &model_->waveforms.front();
    if (edges[0] == 0 || edges[1] == 0) {
      findings_.add(Rule::waveformOneEdgeOnly, head(),
                    {name_, edges[0] == 0 ? "falling" : "rising"});
    } else if (model_->isPushPull() && model_->isElectrical() && std::min(edges[0], edges[1]) < 2) {
      findings_.add(Rule::waveformOneFixture, model_->spot, {name_});
    }
    for (const auto& [key, waveform] : byFixture) {
      if (!key.first) continue;
      const auto other = byFixture.find({false, key.second});
      if (other != byFixture.end()) checkLevels(*waveform, *other->second);
    }
  }

  void checkLevels(const Waveform& rising, const Waveform& falling) {
    if (!rising.rows.isSound || !falling.rows.isSound || !isReal()) return;
    const Curve& up = curvesOf(rising)[typ];
    const Curve& down = curvesOf(falling)[typ];
    if (up.empty() || down.empty()) return;
    const double swing =
        std::max(std::abs(up.y.back() - up.y.front()), std::abs(down.y.back() - down.y.front()));
    const double high = std::abs(up.y.back() - down.y.front());
    const double low = std::abs(up.y.front() - down.y.back());
    if (std::max(high, low) <= std::max(0.05 * swing, 10e-3)) return;
    waveform_ = &falling;
    addNote(findings_.add(Rule::waveformLevelsDiffer, head(),
                          {name_, quantity(up.y.front(), "V"), quantity(up.y.back(), "V"),
                           quantity(down.y.front(), "V"), quantity(down.y.back(), "V")}),
            view_.spotOf(view_.block(rising.rows.block)).line, "the rising one is here");
  }

  const View& view_;
  Findings& findings_;
  const ModelView* model_;
  const ModelCurves& curves_;
  double supply_;
  const Waveform* waveform_ = nullptr;
  std::string name_;
};

}  // namespace

void checkWaveforms(const View& view, const ModelView& model, const ModelCurves& curves,
                    Findings& findings) {
  WaveformChecker(view, model, curves, findings).check();
}

}  // namespace ibis::checks
