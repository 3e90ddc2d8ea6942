#include "harness/harness.h"
#include "model/numbers/numbers.h"

namespace ibis::testing {
namespace {

Texts fieldsOf(std::string_view text, std::int32_t minimumCount = 0, std::string_view filler = {},
               std::string_view separators = delimiters::blanks) {
  Fields fields;
  splitFields(text, fields, minimumCount, filler, separators);
  return Texts(fields.begin(), fields.end());
}

/// A triple in the file's order.
IBISTriple columns(double typ, double min, double max) {
  return {.present = true, .typ = typ, .max = max, .min = min};
}

IBISTriple tripleOf(std::string_view text) {
  IBISTriple triple{.present = false, .typ = 91.0, .max = 92.0, .min = 93.0};
  readTriple(text, triple);
  return triple;
}

IBISTriple singleOf(std::string_view text) {
  IBISTriple triple{.present = false, .typ = 91.0, .max = 92.0, .min = 93.0};
  readSingleAsTriple(text, triple);
  return triple;
}

std::pair<double, double> ratioOf(std::string_view text) {
  std::pair<double, double> ratio{91.0, 92.0};
  readRatio(text, ratio.first, ratio.second, 7.0, 8.0);
  return ratio;
}

std::string modelText(const std::string& rest) {
  return "[Component] U\n[Model] M\nModel_type Output\n" + rest;
}

TEST(SplitFields, CutsAtEveryRunOfSeparators) {
  EXPECT_EQ(fieldsOf("a b\tc"), (Texts{"a", "b", "c"}));
  EXPECT_EQ(fieldsOf(" \t a \t  b\t"), (Texts{"a", "b"}));
  EXPECT_EQ(fieldsOf("a=b"), Texts{"a=b"});
  EXPECT_EQ(fieldsOf("== a = =b=", 0, {}, delimiters::blanksAndEqual), (Texts{"a", "b"}));
  EXPECT_EQ(fieldsOf("/1//2/", 0, {}, delimiters::slash), (Texts{"1", "2"}));
  EXPECT_EQ(fieldsOf("1 2", 0, {}, delimiters::slash), Texts{"1 2"});
  EXPECT_EQ(fieldsOf("a\rb\vc"), Texts{"a\rb\vc"});
  EXPECT_EQ(fieldsOf(""), Texts{});
  EXPECT_EQ(fieldsOf(" \t "), Texts{});
}

TEST(TakeField, TakesAnyNumberOfSeparators) {
  const std::pair<std::string_view, Texts> cases[] = {
      {"/", {" a\tb=c;d,e", " ,f", ""}},
      {" \t", {"a", "b=c;d,e/", ",f"}},
      {" \t=", {"a", "b", "c;d,e/"}},
      {" \t=;", {"a", "b", "c", "d,e/", ",f", ""}},
      {"=;,/ \t", {"a", "b", "c", "d", "e", "f", ""}},
  };
  for (const auto& [separators, fields] : cases) {
    std::string_view text = " a\tb=c;d,e/ ,f";
    for (const std::string& field : fields) {
      EXPECT_EQ(takeField(text, separators), field) << separators;
    }
  }
}

TEST(SplitFields, FillsUpToTheMinimumAndKeepsWhatIsBeyond) {
  EXPECT_EQ(fieldsOf("a", 3, "NA"), (Texts{"a", "NA", "NA"}));
  EXPECT_EQ(fieldsOf("a", 3), (Texts{"a", "", ""}));
  EXPECT_EQ(fieldsOf("", 2, "NC"), (Texts{"NC", "NC"}));
  EXPECT_EQ(fieldsOf("a b c", 2, "NA"), (Texts{"a", "b", "c"}));
  EXPECT_EQ(fieldsOf("a b", 2, "NA"), (Texts{"a", "b"}));
}

TEST(SplitFields, AppendsAndCountsWhatStandsAlready) {
  Fields fields{"x", "y"};
  splitFields("a", fields, 4, "NA");
  EXPECT_EQ(Texts(fields.begin(), fields.end()), (Texts{"x", "y", "a", "NA"}));
}

TEST(SplitFields, LeavesReservedWordsRaw) { EXPECT_EQ(fieldsOf("na Gnd"), (Texts{"na", "Gnd"})); }

TEST(ReadTriple, TakesTypMinMaxInTheOrderOfTheFile) {
  EXPECT_EQ(tripleOf("2.0 1.0 3.0"), columns(2.0, 1.0, 3.0));
  EXPECT_EQ(tripleOf("\t5p 4p\t 6p 7p junk"), columns(5 * 1e-12, 4 * 1e-12, 6 * 1e-12));
}

TEST(ReadTriple, GivesZerosForThreeNotAvailable) {
  EXPECT_EQ(tripleOf("NA NA NA"), columns(0.0, 0.0, 0.0));
}

TEST(ReadTriple, TakesTypForNotAvailable) {
  EXPECT_EQ(tripleOf("1.0 NA 3.0"), columns(1.0, 1.0, 3.0));
  EXPECT_EQ(tripleOf("1.0 2.0 NA"), columns(1.0, 2.0, 1.0));
  EXPECT_EQ(tripleOf("NA 2.0 3.0"), columns(0.0, 2.0, 3.0));
  EXPECT_EQ(tripleOf("4k NA NA"), columns(4e3, 4e3, 4e3));
}

TEST(ReadTriple, GivesZeroForAMissingValue) {
  EXPECT_EQ(tripleOf("1.0"), columns(1.0, 0.0, 0.0));
  EXPECT_EQ(tripleOf("1.0 2.0"), columns(1.0, 2.0, 0.0));
  EXPECT_EQ(tripleOf(""), columns(0.0, 0.0, 0.0));
}

TEST(ReadTriple, GivesZeroForANotAvailableInLowerCase) {
  EXPECT_EQ(tripleOf("1.0 na Na"), columns(1.0, 0.0, 0.0));
}

TEST(ReadTriple, TakesAnEqualSignForTheFirstField) {
  EXPECT_EQ(tripleOf("= 1.0 2.0 3.0"), columns(0.0, 1.0, 2.0));
  EXPECT_EQ(tripleOf("=1.0 2.0 3.0"), columns(0.0, 2.0, 3.0));
}

TEST(ReadTriple, TakesAUnitBehindABlankForAFieldOfItsOwn) {
  EXPECT_EQ(tripleOf("5 pF 3"), columns(5.0, 0.0, 3.0));
}

TEST(ReadSingleAsTriple, StoresOneValueInAllCorners) {
  EXPECT_EQ(singleOf("2.0"), columns(2.0, 2.0, 2.0));
  EXPECT_EQ(singleOf(" =\t= 15p 3"), columns(15 * 1e-12, 15 * 1e-12, 15 * 1e-12));
  EXPECT_EQ(singleOf("1=2"), columns(1.0, 1.0, 1.0));
}

TEST(ReadSingleAsTriple, Gives0Point8ForNotAvailableAndZeroForNothing) {
  EXPECT_EQ(singleOf("NA"), columns(0.8, 0.8, 0.8));
  EXPECT_EQ(singleOf("= NA"), columns(0.8, 0.8, 0.8));
  EXPECT_EQ(singleOf("na"), columns(0.0, 0.0, 0.0));
  EXPECT_EQ(singleOf(""), columns(0.0, 0.0, 0.0));
}

TEST(ReadSingleAsTriple, Gives0Point8ForEveryNotAvailableOfAModel) {
  Parsed parsed(modelText("Vinl NA\nVinh = NA\nVmeas= NA\nCref NA\nRref NA\nVref NA\n"));
  const IBISModel& model = parsed.model();
  for (const IBISTriple* triple :
       {&model.vinl, &model.vinh, &model.vmeas, &model.cref, &model.rref, &model.vref}) {
    EXPECT_EQ(*triple, columns(0.8, 0.8, 0.8));
  }
}

TEST(ReadRatio, CutsAtTheSlashAndHonoursEachSuffix) {
  EXPECT_EQ(ratioOf("0.8/1.2n"), std::pair(0.8, 1.2 * 1e-9));
  EXPECT_EQ(ratioOf("500m/0.3n"), std::pair(500 * 1e-3, 0.3 * 1e-9));
  EXPECT_EQ(ratioOf("1//2/3"), std::pair(1.0, 2.0));
}

TEST(ReadRatio, StoresTheFallbackOfWhatIsNotAvailable) {
  EXPECT_EQ(ratioOf("NA"), std::pair(7.0, 8.0));
  EXPECT_EQ(ratioOf("NA/1n"), std::pair(7.0, 1e-9));
  EXPECT_EQ(ratioOf("1/NA"), std::pair(1.0, 8.0));
}

TEST(ReadRatio, GivesZeroForAMissingSide) {
  EXPECT_EQ(ratioOf("5"), std::pair(5.0, 0.0));
  EXPECT_EQ(ratioOf("/5"), std::pair(5.0, 0.0));
  EXPECT_EQ(ratioOf(""), std::pair(0.0, 0.0));
  EXPECT_EQ(ratioOf("na"), std::pair(0.0, 0.0));
}

TEST(TableRow, FallsBackToTypWhenCutShort) {
  Parsed parsed(modelText("[Pulldown]\n1.0\n2.0 2.0\n3.0 4.0 5.0\n4.0 7.0 8.0 9.0 10.0\n"));
  const IBISTable& table = parsed.model().pulldown;
  EXPECT_EQ(table.voltage, (YVector<double>{1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(table.typ, (YVector<double>{0.0, 2.0, 4.0, 7.0}));
  EXPECT_EQ(table.min, (YVector<double>{0.0, 2.0, 5.0, 8.0}));
  EXPECT_EQ(table.max, (YVector<double>{0.0, 2.0, 4.0, 9.0}));
}

TEST(TableRow, FallsBackForNotAvailableInCapitalsAlone) {
  Parsed parsed(modelText("[Pulldown]\nNA NA NA NA\n1.0 2.0 NA 3.0\n2.0 3.0 na Na\n"));
  const IBISTable& table = parsed.model().pulldown;
  EXPECT_EQ(table.voltage, (YVector<double>{0.0, 1.0, 2.0}));
  EXPECT_EQ(table.typ, (YVector<double>{0.0, 2.0, 3.0}));
  EXPECT_EQ(table.min, (YVector<double>{0.0, 2.0, 0.0}));
  EXPECT_EQ(table.max, (YVector<double>{0.0, 3.0, 0.0}));
}

TEST(WaveformRow, GivesZeroWhenCutShortAndTypForNotAvailable) {
  Parsed parsed(modelText("[Rising Waveform]\nR_fixture = 50\n0 1.0\n1 2.0 NA NA\nNA\n"));
  const IBISWaveform& waveform = parsed.model().risingWaveforms.at(0);
  EXPECT_EQ(waveform.time, (YVector<double>{0.0, 1.0, 0.0}));
  EXPECT_EQ(waveform.typ, (YVector<double>{1.0, 2.0, 0.0}));
  EXPECT_EQ(waveform.min, (YVector<double>{0.0, 2.0, 0.0}));
  EXPECT_EQ(waveform.max, (YVector<double>{0.0, 2.0, 0.0}));
}

TEST(RampRow, GivesZeroWhenCutShortAndTypForNotAvailable) {
  Parsed parsed(modelText("[Ramp]\ndV/dt_r 1.0/2n NA NA/3n\ndV/dt_f = 4/5\n"));
  const IBISModel& model = parsed.model();
  EXPECT_EQ(model.rampDvRise, (IBISTriple{false, 1.0, 1.0, 1.0}));
  EXPECT_EQ(model.rampDtRise, (IBISTriple{false, 2 * 1e-9, 3 * 1e-9, 2 * 1e-9}));
  EXPECT_EQ(model.rampDvFall, (IBISTriple{false, 4.0, 0.0, 0.0}));
  EXPECT_EQ(model.rampDtFall, (IBISTriple{false, 5.0, 0.0, 0.0}));
}

TEST(Triple, IsReadByCornerIndex) {
  const IBISTriple triple = columns(1.0, 2.0, 3.0);
  EXPECT_EQ(triple.at(0), 1.0);
  EXPECT_EQ(triple.at(1), 3.0);
  EXPECT_EQ(triple.at(2), 2.0);
}

}  // namespace
}  // namespace ibis::testing
