#include "reader/file/file.h"

#include <type_traits>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

TEST(IBISFile, BeginsWithTheBuiltInModels) {
  const IBISFile file;
  const auto& models = file.data().models;
  ASSERT_EQ(models.size(), 3u);
  const Texts names = {"GND", "POWER", "NC"};
  const std::vector<ModelType> types = {ModelType::gnd, ModelType::power, ModelType::nc};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(models[i]->name, names[i]);
    EXPECT_EQ(models[i]->spiceName, names[i]);
    EXPECT_EQ(models[i]->type, types[i]);
    EXPECT_EQ(static_cast<int>(models[i]->type), 20 + static_cast<int>(i));
    EXPECT_EQ(file.data().nameTable->spiceName(names[i]), names[i]);
  }
}

TEST(IBISFile, BeginsWithAllElseEmpty) {
  const IBISFile file;
  const IBISFileData& data = file.data();
  EXPECT_EQ(data.version, 0);
  for (const IBISString text :
       {data.fileName, data.fileRev, data.date, data.source, data.notes, data.disclaimer,
        data.copyright, data.userSubcircuitName, data.filePath}) {
    EXPECT_EQ(text, "");
  }
  EXPECT_TRUE(data.components.empty());
  EXPECT_TRUE(data.modelSelectors.empty());
  EXPECT_TRUE(data.packageModels.empty());
  EXPECT_TRUE(data.modelSelections.empty());
  EXPECT_EQ(texts(data.errors), Texts());
  EXPECT_EQ(texts(data.warnings), Texts());
}

TEST(IBISFile, IsTheErrorHandlerAndIsNotCopied) {
  EXPECT_TRUE((std::is_base_of_v<IBISErrorHandler, IBISFile>));
  EXPECT_FALSE(std::is_copy_constructible_v<IBISFile>);
  EXPECT_FALSE(std::is_copy_assignable_v<IBISFile>);
}

TEST(IBISFile, LetsAComponentShareTheNameOfABuiltInModel) {
  Parsed parsed("[Component] gnd\n[Component] gnd_1\n");
  EXPECT_EQ(parsed.component(0).name, "GND");
  EXPECT_EQ(parsed.component(0).spiceName, "GND");
  EXPECT_EQ(parsed.component(1).spiceName, "gnd_1");
}

TEST(IBISFile, SharesNothingWithAnother) {
  IBISFile one;
  const IBISFile other;
  one.data().nameTable->registerName("a-b");
  one.addUserModelSelector("x");
  EXPECT_EQ(other.data().nameTable->spiceName("a-b"), "");
  EXPECT_TRUE(other.data().modelSelections.empty());
  EXPECT_NE(one.data().models[0].get(), other.data().models[0].get());
}

TEST(HasComponent, ComparesNamesExactly) {
  const Parsed parsed("[Component] One\n[Component] Two two\n[Component] gnd\n");
  for (const char* name : {"One", "Two two", "GND"}) {
    EXPECT_TRUE(parsed.file.hasComponent(name)) << name;
  }
  for (const char* name : {"one", "Two", "One ", "", "POWER", "Three"}) {
    EXPECT_FALSE(parsed.file.hasComponent(name)) << name;
  }
}

TEST(HasComponent, IsFalseInAnEmptyFile) {
  const IBISFile file;
  EXPECT_FALSE(file.hasComponent(""));
  EXPECT_FALSE(file.hasComponent("GND"));
}

TEST(HasComponent, FindsAComponentWithoutName) {
  EXPECT_TRUE(Parsed("[Component]\n").file.hasComponent(""));
}

// Four components: without package model, with a known one, with an unknown one, the first again.
const std::string packagedComponents =
    "[Component] bare\n[Component] known\n[Package Model] P\n[Component] unknown\n"
    "[Package Model] p\n[Component] bare\n[Package Model] Q\n"
    "[Define Package Model] O\n[End Package Model]\n[Define Package Model] P\n"
    "[End Package Model]\n[End]\n";

TEST(PackageModelFor, GivesTheNameAndWhetherItIsDefined) {
  const Parsed parsed(packagedComponents);
  ASSERT_EQ(parsed.errors(), Texts());
  std::string name = "before";
  EXPECT_TRUE(parsed.file.packageModelFor("known", name));
  EXPECT_EQ(name, "P");
  EXPECT_FALSE(parsed.file.packageModelFor("unknown", name));
  EXPECT_EQ(name, "p");
}

TEST(PackageModelFor, IsTrueForAComponentWithoutPackageModel) {
  const Parsed parsed(packagedComponents);
  std::string name = "before";
  EXPECT_TRUE(parsed.file.packageModelFor("bare", name));
  EXPECT_EQ(name, "");
}

TEST(PackageModelFor, IsFalseWithoutThatComponent) {
  const Parsed parsed(packagedComponents);
  std::string name = "before";
  EXPECT_FALSE(parsed.file.packageModelFor("Known", name));
  EXPECT_EQ(name, "before");
}

TEST(ModelSelections, AreKeptInOrderWithReservedWordsFolded) {
  IBISFile file;
  for (const std::string text : {"second choice", "first", "nc", "first", ""}) {
    file.addUserModelSelector(text);
  }
  const std::vector<IBISString> expected = {"second choice", "first", "NC", "first", ""};
  EXPECT_EQ(file.data().modelSelections, expected);
}

TEST(Options, OutliveTheTextThatTheyWereSetFrom) {
  IBISFile file;
  std::string text(100, 'a');
  file.addUserModelSelector(text);
  file.setUserSubcircuitName(text);
  file.setFilePath(text);
  text.assign(100, 'b');
  const std::string expected(100, 'a');
  EXPECT_EQ(file.data().modelSelections[0], expected);
  EXPECT_EQ(file.data().userSubcircuitName, expected);
  EXPECT_EQ(file.data().filePath, expected);
}

TEST(Options, ReplaceEarlierOnesAndFoldReservedWords) {
  IBISFile file;
  file.setUserSubcircuitName("first");
  file.setUserSubcircuitName("gnd");
  file.setFilePath("/first");
  file.setFilePath("/second.ibs");
  EXPECT_EQ(file.data().userSubcircuitName, "GND");
  EXPECT_EQ(file.data().filePath, "/second.ibs");
}

}  // namespace
}  // namespace ibis::testing
