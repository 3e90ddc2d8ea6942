// The rules about I-V tables.

#include <algorithm>
#include <cmath>

#include "checks/families.h"
#include "checks/load_line.h"
#include "checks/outlier.h"

namespace ibis::checks {
namespace {

constexpr std::size_t mostRows = 100;

class TableChecker {
 public:
  TableChecker(const View& view, const ModelView& model, const ModelCurves& curves,
               Findings& findings)
      : view_(view),
        findings_(findings),
        model_(&model),
        curves_(curves),
        supply_(model.supply()),
        name_(model.name) {}

  void check() {
    for (place_ = 0; place_ < tables; ++place_) {
      if (model_->table[place_].given()) checkTable(model_->table[place_]);
    }
    if (model_->isElectrical()) checkTogether();
  }

 private:
  std::string keyword() const { return std::string(tableNames[place_]); }
  bool isPull() const { return place_ == pulldown || place_ == pullup; }
  Spot head(const Rows& rows) const { return view_.spotOf(view_.block(rows.block)); }

  Spot cell(const Rows& rows, std::size_t row, std::size_t column) const {
    const SourceLine& line = view_.syntax.lines()[rows.lines[row]];
    const std::vector<Word> words = splitRow(line);
    return column < words.size() ? view_.spotOf(line, words[column], rows.block)
                                 : view_.spotOf(line, rows.block);
  }

  // A submodel adds its own current while the driver drives.
  void weigh(Finding& finding) const {
    if (model_->drivesSubmodel) finding.diagnostic.severity = Severity::note;
  }

  void checkTable(const Rows& rows) {
    if (!checkForm(rows) || !rows.isSound) return;
    checkOrder(rows);
    checkSize(rows);
    if (!model_->isElectrical()) return;
    const Curve& curve = curves_.of[place_][typ];
    if (curve.empty()) return;
    checkSign(rows, curve);
    checkOutliers(rows);
    if (!(supply_ > 0.0)) return;
    if (isPull() && model_->isDriver()) checkPull(rows, curve);
    if (!isPull()) checkClamp(rows, curve);
    checkCorners(rows);
  }

  bool checkForm(const Rows& rows) {
    if (rows.size() == 0) {
      findings_.add(Rule::tableEmpty, head(rows), {keyword(), name_});
      return false;
    }
    if (rows.size() == 1) {
      findings_.add(Rule::tableTooFewPoints, head(rows), {keyword(), name_});
      return false;
    }
    if (!rows.isSound) return true;
    if (!rows.hasCorner(typ)) {
      findings_.add(Rule::tableNoTyp, head(rows), {keyword(), name_});
      return false;
    }
    const bool isFirst = std::isnan(rows.y[typ].front());
    if (isFirst || std::isnan(rows.y[typ].back())) {
      findings_.add(Rule::tableEndNa, cell(rows, isFirst ? 0 : rows.size() - 1, 1),
                    {keyword(), name_, isFirst ? "first" : "last"});
    }
    if (rows.size() > mostRows) {
      findings_.add(Rule::tableTooManyPoints, head(rows),
                    {keyword(), name_, std::to_string(rows.size())});
    }
    return true;
  }

  // Each row is held against the last one that a load keeps.
  void checkOrder(const Rows& rows) {
    const bool falls = rows.x.back() < rows.x.front();
    double last = rows.x.front();
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const double x = rows.x[i];
      if (falls ? x < last : x > last) {
        last = x;
        continue;
      }
      const Spot spot = cell(rows, i, 0);
      if (x == last) {
        findings_.addOnce(Rule::tableVoltageRepeated, spot,
                          {keyword(), name_, quantity(x, "V"), ""});
      } else {
        findings_.addOnce(Rule::tableVoltageOrder, spot,
                          {keyword(), name_, quantity(last, "V"), quantity(x, "V"),
                           falls ? "falling" : "rising", ""});
      }
    }
  }

  void checkSize(const Rows& rows) {
    std::size_t worst = 0;
    std::size_t corner = typ;
    double most = 0.0;
    for (std::size_t c = 0; c < corners; ++c) {
      for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!(std::abs(rows.y[c][i]) > most)) continue;
        most = std::abs(rows.y[c][i]);
        worst = i;
        corner = c;
      }
    }
    if (most <= 100.0) return;
    Finding& told =
        findings_.add(Rule::tableCurrentImplausible, cell(rows, worst, corner + 1),
                      {keyword(), name_, quantity(rows.y[corner][worst], "A"),
                       quantity(rows.x[worst], "V"), most > 1e6 ? ", as of an ideal diode" : ""});
    if (most > 1000.0) told.diagnostic.severity = Severity::warning;
  }

  void checkSign(const Rows& rows, const Curve& curve) {
    const bool mustRise = place_ == pulldown || place_ == gndClamp;
    const double rise = (curve.y.back() - curve.y.front()) * (mustRise ? 1.0 : -1.0);
    double most = 0.0;
    for (const double current : curve.y) most = std::max(most, std::abs(current));
    if (rise >= 0.0 || -rise <= std::max(1e-6, 0.02 * most)) return;
    weigh(findings_.add(
        Rule::tableCurrentSign, head(rows),
        {keyword(), name_, mustRise ? "falls" : "rises", quantity(curve.y.front(), "A"),
         quantity(curve.x.front(), "V"), quantity(curve.y.back(), "A"),
         quantity(curve.x.back(), "V"), mustRise ? "rise" : "fall"}));
  }

  void checkOutliers(const Rows& rows) {
    for (std::size_t c = 0; c < corners; ++c) {
      const Curve& curve = curves_.of[place_][c];
      const auto found = findOutlier(curve.x, curve.y, {.ofSpan = 0.05, .atLeast = 100e-6});
      if (!found) continue;
      const std::size_t i = *found;
      const auto place = std::ranges::find(rows.x, curve.x[i]);
      const auto row = static_cast<std::size_t>(place - rows.x.begin());
      const double expected =
          onLine(curve.x[i - 1], curve.y[i - 1], curve.x[i + 1], curve.y[i + 1], curve.x[i]);
      Finding* told = findings_.addOnce(
          Rule::tableOutlier, cell(rows, row, c + 1),
          {keyword(), name_, std::string(cornerNames[c]), quantity(curve.y[i], "A"),
           quantity(curve.x[i], "V"), quantity(curve.y[i - 1], "A"), quantity(curve.y[i + 1], "A"),
           quantity(expected, "A"), ""});
      if (told != nullptr) weigh(*told);
    }
  }

  void checkPull(const Rows& rows, const Curve& curve) {
    const double atZero = std::abs(curve.at(0.0));
    const double atHalf = std::abs(curve.at(supply_ / 2));
    const double atSupply = std::abs(curve.at(supply_));
    const bool isLarge =
        curve.x.front() <= 0.0 && curve.x.back() >= 0.0 && atZero > std::max(0.1 * atHalf, 100e-6);
    if (isLarge && atSupply < 0.3 * atZero && !model_->isInPair) {
      weigh(findings_.add(
          Rule::tableWrongReference, head(rows),
          {keyword(), name_, quantity(curve.at(0.0), "A"), quantity(curve.at(supply_), "A"),
           quantity(supply_, "V"),
           place_ == pullup ? "ground (Vtable = Vcc - Vout)" : "the supply (Vtable = Vout)"}));
    } else if (isLarge) {
      findings_.add(Rule::tableCurrentAtZero, head(rows),
                    {keyword(), name_, quantity(curve.at(0.0), "A")});
    }
    if (curve.x.front() > -0.8 * supply_ || curve.x.back() < 1.8 * supply_) {
      findings_.add(
          Rule::tableRange, head(rows),
          {keyword(), name_, quantity(curve.x.front(), "V"), quantity(curve.x.back(), "V"),
           quantity(-supply_, "V"), quantity(2.0 * supply_, "V")});
    }
  }

  void checkClamp(const Rows& rows, const Curve& curve) {
    if (curve.x.front() > -0.8 * supply_ && std::abs(curve.y.front()) > 1e-3) {
      findings_.add(Rule::tableRangeClamp, head(rows),
                    {keyword(), name_, quantity(curve.x.front(), "V"),
                     quantity(curve.y.front(), "A"), quantity(-supply_, "V")});
    }
    double least = std::abs(curve.y.front());
    for (const double current : curve.y) least = std::min(least, std::abs(current));
    if (least > 1e-3) {
      findings_.add(Rule::tableClampNeverZero, head(rows),
                    {keyword(), name_, quantity(least, "A")});
    }
  }

  void checkCorners(const Rows& rows) {
    const auto& of = curves_.of[place_];
    if (of[min].empty() || of[max].empty()) return;
    const bool isFlat = std::ranges::all_of(of[typ].y, [](double y) { return y == 0.0; });
    const bool isSupplySame = model_->pullupReference(min) == model_->pullupReference(max);
    if (rows.y[typ] == rows.y[min] && rows.y[typ] == rows.y[max] && !isFlat && !isSupplySame) {
      findings_.add(Rule::tableCornersIdentical, head(rows), {keyword(), name_});
      return;
    }
    if (!isPull() || !model_->isDriver()) return;
    const double place = supply_ / 2;
    const double middle = std::abs(of[typ].at(place));
    const double low = of[min].at(place);
    const double high = of[max].at(place);
    if (std::abs(low) <= 1.2 * middle || std::abs(high) >= 0.8 * middle) return;
    findings_.add(Rule::tableCornersSwapped, head(rows),
                  {keyword(), name_, quantity(place, "V"), quantity(low, "A"),
                   quantity(of[typ].at(place), "A"), quantity(high, "A")});
  }

  // Rules about two tables of a model.
  void checkTogether() {
    if (!(supply_ > 0.0)) return;
    if (model_->isDriver()) {
      checkClampInPull(pulldown, gndClamp);
      checkClampInPull(pullup, powerClamp);
    }
    checkOverlap();
  }

  // The channel conducts at most what its conductance near 0 says; more of it is the clamp's.
  void checkClampInPull(std::size_t pull, std::size_t clamp) {
    const Curve& p = curves_.of[pull][typ];
    const Curve& c = curves_.of[clamp][typ];
    const bool isSound = model_->table[pull].isSound && model_->table[clamp].isSound;
    if (p.empty() || c.empty() || !isSound) return;
    const double low = std::max({p.x.front(), c.x.front(), -supply_});
    if (low > -0.9) return;
    const double conductance = (p.at(0.0) - p.at(-0.2)) / 0.2;
    for (const double part : {0.0, 0.25, 0.5}) {
      const double x = low + (-0.9 - low) * part;
      const double channel = conductance * x;
      const double current = c.at(x);
      if (std::abs(current) <= std::max(10e-3, 2.0 * std::abs(channel))) return;
      const double ratio = (p.at(x) - channel) / current;
      if (ratio < 0.8 || ratio > 1.2) return;
    }
    weigh(findings_.add(
        Rule::tableClampInPull, head(model_->table[pull]),
        {std::string(tableNames[pull]), name_, std::string(tableNames[clamp]), quantity(low, "V"),
         quantity(p.at(low), "A"), quantity(c.at(low), "A"), quantity(conductance * low, "A")}));
  }

  void checkOverlap() {
    const Curve& ground = curves_.of[gndClamp][typ];
    const Curve& power = curves_.of[powerClamp][typ];
    const double low = model_->gndClampReference(typ);
    const double high = model_->powerClampReference(typ);
    const bool isSound = model_->table[gndClamp].isSound && model_->table[powerClamp].isSound;
    if (ground.empty() || power.empty() || !isSound || std::isnan(high)) return;
    for (const double pad : {low - 1.2, high + 1.2}) {
      const bool isBelow = pad < low;
      const double own = isBelow ? ground.at(pad - low) : power.at(high - pad);
      const double other = isBelow ? power.at(high - pad) : ground.at(pad - low);
      const bool isInside = pad - low >= ground.x.front() && pad - low <= ground.x.back() &&
                            high - pad >= power.x.front() && high - pad <= power.x.back();
      if (!isInside || std::abs(own) <= 5e-3 || std::abs(other) <= 0.5 * std::abs(own)) continue;
      weigh(findings_.add(Rule::tableClampOverlap, head(model_->table[gndClamp]),
                          {name_, quantity(pad, "V"), quantity(ground.at(pad - low), "A"),
                           quantity(power.at(high - pad), "A")}));
      return;
    }
  }

  const View& view_;
  Findings& findings_;
  const ModelView* model_;
  const ModelCurves& curves_;
  double supply_;
  std::string name_;
  std::size_t place_ = 0;
};

}  // namespace

void checkTables(const View& view, const ModelView& model, const ModelCurves& curves,
                 Findings& findings) {
  TableChecker(view, model, curves, findings).check();
}

}  // namespace ibis::checks
