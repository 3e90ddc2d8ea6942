// Exports of files that hold very many of one thing.
//
// A step that is repeated for each item on all items would take minutes.

#include "export_files.h"
#include "harness/harness.h"

namespace ibis::testing {
namespace {

constexpr int manyItems = 30'000;

const std::string head =
    "[IBIS Ver] 4.2\n[Component] Part\n[Manufacturer] Maker\n[Package Model] pack\n[Package]\n"
    "R_pkg 0 NA NA\nL_pkg 0 NA NA\nC_pkg 0 NA NA\n[Pin] signal_name model_name\n";
const std::string receiver = "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n";
const std::string series = "Model_type Series\n[R Series] 50 50 50\n";

template <class Item>
std::string repeat(int count, Item item) {
  std::string text;
  for (int i = 0; i < count; ++i) text += item(std::to_string(i));
  return text;
}

struct ManyOf {
  const char* name;
  std::string text;
};

void PrintTo(const ManyOf& many, std::ostream* out) { *out << many.name; }

std::string pinsOfOneWord() {
  constexpr std::string_view marks = "!#$%&'*+,-./:;<=>?@^_`{}~";
  std::string pins;
  for (std::size_t i = 0; i < manyItems; ++i) {
    for (std::size_t rest = i, k = 0; k < 4; ++k, rest /= marks.size()) {
      pins += marks[rest % marks.size()];
    }
    pins += " S in\n";
  }
  return head + pins + receiver;
}

std::string seriesRows() {
  return head + repeat(manyItems, [](const std::string& i) { return i + " S in\n"; }) +
         "[Series Pin Mapping] pin_2 model_name function_table_group\n" +
         repeat(manyItems,
                [](const std::string& i) { return "0 " + i + " s" + i + " " + i + "\n"; }) +
         "[Series Switch Groups]\nOn" +
         repeat(manyItems, [](const std::string& i) { return ' ' + i + "\n"; }) + receiver +
         repeat(manyItems, [](const std::string& i) { return "[Model] s" + i + "\n" + series; });
}

std::string pairsWithDelays() {
  return head +
         repeat(manyItems, [](const std::string& i) { return i + "p S in\n" + i + "n S in\n"; }) +
         "[Diff Pin] inv_pin vdiff tdelay_typ\n" +
         repeat(manyItems,
                [](const std::string& i) { return i + "p " + i + "n 0." + i + " " + i + "p\n"; }) +
         receiver;
}

std::string railsOfEachModel() {
  return head + repeat(manyItems, [](const std::string& i) { return i + " S m" + i + "\n"; }) +
         repeat(manyItems, [](const std::string& i) {
           return "[Model] m" + i +
                  "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n[Voltage Range] 3." + i + " 3 3\n";
         });
}

std::string packageOfManyPins() {
  return head + repeat(manyItems, [](const std::string& i) { return i + " S in\n"; }) + receiver +
         "[Define Package Model] pack\n[Number Of Pins] " + std::to_string(manyItems) +
         "\n[Pin Numbers]\n" + repeat(manyItems, [](const std::string& i) { return i + "\n"; }) +
         "[Model Data]\n[Inductance Matrix] Sparse_matrix\n" +
         repeat(manyItems, [](const std::string& i) { return "[Row] " + i + "\n" + i + " 4n\n"; }) +
         "[End Model Data]\n[End Package Model]\n";
}

const ManyOf kinds[] = {
    {"PinsOfOneWord", pinsOfOneWord()},         {"SeriesRows", seriesRows()},
    {"PairsWithDelays", pairsWithDelays()},     {"RailsOfEachModel", railsOfEachModel()},
    {"PackageOfManyPins", packageOfManyPins()},
};

class ExportGrowth : public ::testing::TestWithParam<ManyOf> {
 protected:
  cli::Export exported(cli::PackageKind package) const {
    cli::ExportRequest request;
    request.source = folder_.write("part.ibs", GetParam().text + "[End]\n");
    request.folder = folder_.file("out");
    request.package = package;
    return cli::exportFile(request);
  }

  TemporaryFolder folder_;
};

TEST_P(ExportGrowth, EndsWithAFile) {
  const cli::Export result = exported(cli::PackageKind::pins);
  EXPECT_MESSAGES(result.errors);
  EXPECT_EQ(result.files, Texts({folder_.file("out/Part_typ.inc")}));
}

TEST_P(ExportGrowth, EndsForACoupledPackage) {
  const cli::Export result = exported(cli::PackageKind::coupled);
  EXPECT_LE(result.errors.size(), 1u);  // of so many pins that nobody couples
  EXPECT_EQ(result.files.size() + result.errors.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ExportGrowth, ::testing::ValuesIn(kinds),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace ibis::testing
