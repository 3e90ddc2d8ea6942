#include "host/load_sequence.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;

// A component of the two built-in models, so that nothing can be wrong with a model.
std::string component(std::string_view name = "Amp", std::string_view manufacturer = "Maker") {
  return lines({"[Component] " + std::string(name), "[Manufacturer] " + std::string(manufacturer),
                "[Pin] signal_name model_name", "1 ground GND", "2 supply POWER"});
}

std::string fileOf(std::string_view sections) {
  return "[IBIS Ver] 4.2\n" + std::string(sections) + "[End]\n";
}

// The pin that the selector serves is ground by default and supply by choice.
std::string selectorFile() {
  return fileOf(lines({"[Component] Amp", "[Pin] signal_name model_name", "1 rail Rail",
                       "[Model Selector] Rail", "GND slow rail", "POWER fast rail"}));
}

LoadRequest requestFor(const std::string& source, const std::string& root,
                       const LoadOptions& options) {
  return {.source = source,
          .mode = options.mode,
          .component = options.component,
          .rootDirectory = root,
          .subcircuit = options.subcircuit,
          .pins = options.pins,
          .selections = options.selections};
}

// A load of a text from a file, read and not yet written.
struct Loading {
  explicit Loading(std::string_view text, const LoadOptions& options = {})
      : load(requestFor(saved(text), output.path(), options)) {
    load.read();
  }

  std::string saved(std::string_view text) const {
    writeWholeFile(input.file("input.ibs"), text);
    return input.file("input.ibs");
  }

  const IBISFileData& data() const { return load.file().data(); }
  Texts errors() const { return texts(data().errors); }
  const IBISComponent* component(std::size_t place) const { return data().components[place].get(); }

  TemporaryFolder input;
  TemporaryFolder output;
  Load load;
};

Texts namesOf(const std::vector<IBISModel*>& models) {
  Texts names;
  for (const IBISModel* model : models) names.push_back(model->name.str());
  return names;
}

Texts pinsOf(const IBISComponent& component) {
  Texts names;
  for (const IBISPinEntry& entry : component.pinEntries) names.push_back(entry.pin->name.str());
  return names;
}

Texts textsOf(const std::vector<IBISString>& strings) {
  Texts texts;
  for (const IBISString& string : strings) texts.push_back(string.str());
  return texts;
}

// A line of an output file, counted from 0.
std::string lineOf(const std::string& text, std::size_t number) {
  std::istringstream stream(text);
  std::string line;
  for (std::size_t i = 0; i <= number; ++i) std::getline(stream, line);
  return line;
}

TEST(OutputMode, IsTheOneOfItsTextInAnyCase) {
  const std::pair<const char*, OutputMode> cases[] = {
      {"", OutputMode::model},          {"script", OutputMode::script},
      {"Script", OutputMode::script},   {"model", OutputMode::model},
      {"MODEL", OutputMode::model},     {"symbol", OutputMode::symbol},
      {"sYMBOL", OutputMode::symbol},   {"package", OutputMode::package},
      {"Package", OutputMode::package},
  };
  for (const auto& [text, mode] : cases) EXPECT_EQ(outputMode(text), mode) << text;
}

TEST(OutputMode, IsUnknownForAnyOtherText) {
  for (const char* text :
       {" ", "model ", " model", "models", "mode", "1", "scr\xc4\xb1pt", "all"}) {
    EXPECT_EQ(outputMode(text), OutputMode::unknown) << text;
  }
}

TEST(OutputMode, HasTheNumberOfItsKind) {
  EXPECT_EQ(static_cast<int>(OutputMode::script), 0);
  EXPECT_EQ(static_cast<int>(OutputMode::model), 1);
  EXPECT_EQ(static_cast<int>(OutputMode::symbol), 2);
  EXPECT_EQ(static_cast<int>(OutputMode::package), 3);
  EXPECT_EQ(static_cast<int>(OutputMode::unknown), 4);
}

TEST(WithoutEscapes, TakesTheBackslashesOut) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"plain text", "plain text"},
      {"a\\sb", "a b"},
      {"\\f\\n\\r\\s\\t", "\f\n\r \t"},
      {"\\\\", "\\"},
      {"\\\\s", "\\s"},
      {"\\\\\\s", "\\ "},
      {"\\F\\N\\R\\S\\T", "FNRST"},
      {"\\\"\\'\\x\\0\\ ", "\"'x0 "},
      {"lost\\", "lost"},
      {"\\", ""},
      {"kept\\\\", "kept\\"},
      {"\\\xe9\xe9", "\xe9\xe9"},
  };
  for (const auto& [text, plain] : cases) EXPECT_EQ(withoutEscapes(text), plain) << text;
}

TEST(WithoutEscapes, StopsAt255Characters) {
  const std::string full(255, 'x');
  EXPECT_EQ(withoutEscapes(full), full);
  EXPECT_EQ(withoutEscapes(full + "y"), full);
  EXPECT_EQ(withoutEscapes(std::string(300, 'x')), full);
}

TEST(WithoutEscapes, CountsTheCharactersThatItMakes) {
  std::string escaped;
  for (int i = 0; i < 300; ++i) escaped += "\\s";
  EXPECT_EQ(withoutEscapes(escaped), std::string(255, ' '));
  const std::string almost(254, 'x');
  EXPECT_EQ(withoutEscapes(almost + "\\sy"), almost + " ");
  EXPECT_EQ(withoutEscapes(almost + "y\\s"), almost + "y");
  EXPECT_EQ(withoutEscapes(almost + "\\"), almost);
}

TEST(Load, ReadsWithoutAMessageAndGivesTheFilesThatItWrites) {
  Loading loading(fileOf(component()));
  EXPECT_MESSAGES(loading.errors());
  EXPECT_MESSAGES(loading.data().warnings);
  EXPECT_TRUE(loading.load.sourceWasRead());
  EXPECT_EQ(loading.load.mode(), OutputMode::model);
  EXPECT_EQ(loading.load.write(),
            Texts({loading.output.path() + "/dut.lb", loading.output.path() + "/dut_INFO.html"}));
}

TEST(Load, WritesNothingWhileItReads) {
  const Loading loading(fileOf(component()));
  EXPECT_TRUE(loading.output.contents().empty());
}

TEST(Load, WritesTheFilesOfItsMode) {
  const std::pair<const char*, Texts> cases[] = {
      {"", {"dut.lb", "dut_INFO.html"}},
      {"model", {"dut.lb", "dut_INFO.html"}},
      {"MODEL", {"dut.lb", "dut_INFO.html"}},
      {"script", {"ibis_components.kvscr"}},
      {"package", {"dut.lb"}},
      {"Package", {"dut.lb"}},
      {"symbol", {}},
  };
  for (const auto& [mode, names] : cases) {
    const Loaded loaded = loadText(fileOf(component()), {.mode = mode});
    EXPECT_MESSAGES(loaded.errors);
    EXPECT_EQ(loaded.written, names) << mode;
    EXPECT_EQ(loaded.files.size(), names.size()) << mode;
  }
}

TEST(Load, WritesAPackageAndNoModelsInPackageMode) {
  const std::string text = fileOf(component());
  const Loaded package = loadText(text, {.mode = "package"});
  EXPECT_EQ(lineOf(package.files.at("dut.lb"), 2), "** IBIS PACKAGE MODEL");
  EXPECT_EQ(loadText(text, {.mode = "PACKAGE"}).files, package.files);
  EXPECT_EQ(lineOf(loadText(text).files.at("dut.lb"), 2), "** IBIS version:       4.2");
}

TEST(Load, WritesNothingInSymbolModeAndSaysNothing) {
  Loading loading(fileOf(component()), {.mode = "symbol"});
  EXPECT_EQ(loading.load.write(), Texts());
  EXPECT_TRUE(loading.output.contents().empty());
  EXPECT_MESSAGES(loading.errors());
  EXPECT_MESSAGES(loading.data().warnings);
}

TEST(Load, ChecksInSymbolModeWhatOtherModesCheck) {
  const Loading loading(fileOf(component()), {.mode = "symbol", .component = "Other"});
  EXPECT_MESSAGES(loading.errors(), "Component name 'Other' not found in IBIS file");
}

TEST(Load, WritesNothingWithAnError) {
  Loading loading(fileOf(component()), {.mode = "netlist"});
  EXPECT_MESSAGES(loading.errors(), "Unknown output mode");
  EXPECT_EQ(loading.load.write(), Texts());
  EXPECT_TRUE(loading.output.contents().empty());
}

TEST(Load, WritesNothingForAFileWithoutComponents) {
  for (const char* mode : {"", "script", "model", "symbol", "package"}) {
    Loading loading(fileOf(""), {.mode = mode});
    EXPECT_MESSAGES(loading.errors());
    EXPECT_EQ(loading.load.chosenComponent(), nullptr);
    EXPECT_EQ(loading.load.write(), Texts()) << mode;
    EXPECT_TRUE(loading.output.contents().empty()) << mode;
  }
}

TEST(Load, WritesTheFirstComponentWithoutAName) {
  const std::string text = fileOf(component("Amp", "One") + component("Mixer", "Two"));
  Loading loading(text);
  EXPECT_EQ(loading.load.chosenComponent(), loading.component(0));
  const Loaded loaded = loadText(text);
  EXPECT_EQ(lineOf(loaded.files.at("dut.lb"), 3), "** Component:          Amp");
  EXPECT_EQ(loaded.files, loadText(text, {.component = "Amp"}).files);
}

TEST(Load, WritesTheComponentOfTheName) {
  const std::string text = fileOf(component("Amp", "One") + component("Mixer", "Two"));
  Loading loading(text, {.component = "Mixer"});
  EXPECT_EQ(loading.load.chosenComponent(), loading.component(1));
  const Loaded loaded = loadText(text, {.component = "Mixer"});
  EXPECT_EQ(lineOf(loaded.files.at("dut.lb"), 3), "** Component:          Mixer");
}

TEST(Load, PreparesOnlyTheComponentOfTheName) {
  const std::string text = fileOf(component("Amp") + component("Mixer"));
  const Loading one(text, {.component = "Mixer"});
  EXPECT_EQ(pinsOf(*one.component(0)), Texts());
  EXPECT_EQ(pinsOf(*one.component(1)), Texts({"1", "2"}));
  const Loading all(text);
  EXPECT_EQ(pinsOf(*all.component(0)), Texts({"1", "2"}));
  EXPECT_EQ(pinsOf(*all.component(1)), Texts({"1", "2"}));
}

TEST(Load, PreparesTheFirstAndChoosesTheLastOfOneName) {
  const std::string twins = component("Amp", "One") + component("Amp", "Two");
  const Loading loading(fileOf(twins + component("Mixer", "Three")), {.component = "Amp"});
  EXPECT_MESSAGES(loading.errors());
  EXPECT_EQ(pinsOf(*loading.component(0)), Texts({"1", "2"}));
  EXPECT_EQ(pinsOf(*loading.component(1)), Texts());
  EXPECT_EQ(loading.load.chosenComponent(), loading.component(1));
}

TEST(Load, WritesTheLastOfOneNameAsItWasNeverPrepared) {
  const Loaded twins =
      loadText(fileOf(component("Amp", "One") + component("Amp", "Two")), {.component = "Amp"});
  const Loaded bare = loadText(fileOf("[Component] Amp\n[Manufacturer] Two\n"));
  EXPECT_EQ(lineOf(twins.files.at("dut.lb"), 4), "** Manufacturer:       Two");
  EXPECT_EQ(twins.files, bare.files);
}

TEST(Load, ChecksTheFirstOfOneNameAndNotTheLast) {
  const std::string broken = "[Component] Amp\n[Pin] signal_name model_name\n1 a Missing\n";
  const Loading first(fileOf(broken + component()), {.component = "Amp"});
  EXPECT_MESSAGES(first.errors(), "Line 4: Model referenced by pin '1' has not been defined");
  const Loading last(fileOf(component() + broken), {.component = "Amp"});
  EXPECT_MESSAGES(last.errors());
}

TEST(Load, ChoosesNoComponentForAnUnknownName) {
  const Loading loading(fileOf(component("Amp")), {.component = "amp"});
  EXPECT_MESSAGES(loading.errors(), "Component name 'amp' not found in IBIS file");
  EXPECT_EQ(loading.load.chosenComponent(), nullptr);
}

TEST(Load, FoldsAReservedWordAsComponentName) {
  const Loading loading(fileOf(component("Gnd")), {.component = "gND"});
  EXPECT_MESSAGES(loading.errors());
  EXPECT_EQ(loading.load.chosenComponent(), loading.component(0));
  const Loading missing(fileOf(component("Amp")), {.component = "power"});
  EXPECT_MESSAGES(missing.errors(), "Component name 'POWER' not found in IBIS file");
}

TEST(Load, TakesThePinsOfTheRequest) {
  const Loading one(fileOf(component()), {.pins = {"2", "none"}});
  EXPECT_EQ(pinsOf(*one.component(0)), Texts({"2"}));
  const Loading all(fileOf(component()));
  EXPECT_EQ(pinsOf(*all.component(0)), Texts({"1", "2"}));
}

TEST(Load, FoldsReservedWordsAmongThePins) {
  const std::string text = "[Component] Amp\n[Pin] signal_name model_name\nnc a GND\n2 b GND\n";
  const Loading loading(fileOf(text), {.pins = {"Nc"}});
  EXPECT_EQ(pinsOf(*loading.component(0)), Texts({"NC"}));
}

TEST(Load, TakesTheSelectionsWithoutTheirEscapes) {
  const Loading chosen(selectorFile(), {.selections = {"fast\\srail"}});
  EXPECT_MESSAGES(chosen.errors());
  EXPECT_EQ(textsOf(chosen.data().modelSelections), Texts({"fast rail"}));
  EXPECT_EQ(namesOf(chosen.component(0)->models), Texts({"POWER"}));
  const Loading byDefault(selectorFile());
  EXPECT_EQ(namesOf(byDefault.component(0)->models), Texts({"GND"}));
}

TEST(Load, FoldsAReservedWordAmongTheSelections) {
  const Loading loading(selectorFile(), {.selections = {"\\gnd", "slow\\srail"}});
  EXPECT_EQ(textsOf(loading.data().modelSelections), Texts({"GND", "slow rail"}));
  EXPECT_MESSAGES(loading.errors(), "Model selector 'GND' not found in IBIS file");
}

TEST(Load, CutsALongSelection) {
  const Loading loading(selectorFile(), {.selections = {std::string(300, 'x')}});
  EXPECT_MESSAGES(loading.errors(),
                  "Model selector '" + std::string(255, 'x') + "' not found in IBIS file");
}

TEST(Load, FoldsAReservedWordAsSubcircuitName) {
  const Loaded loaded = loadText(fileOf(component()), {.subcircuit = "gnd"});
  EXPECT_EQ(loaded.written, Texts({"GND.lb", "GND_INFO.html"}));
}

TEST(Load, NamesFilesByNothingWithoutASubcircuitName) {
  const Loaded loaded = loadText(fileOf(component()), {.subcircuit = ""});
  EXPECT_EQ(loaded.written, Texts({".lb", "_INFO.html"}));
}

TEST(Load, ReadsOnce) {
  Loading loading(fileOf(component() + "[Diff Pin] inv_pin\n1 9\n"),
                  {.mode = "netlist", .selections = {"none"}});
  const Texts errors = loading.errors();
  EXPECT_MESSAGES(loading.errors(), "Model selector 'none' not found in IBIS file",
                  "Line 8: Inverting [Diff Pin] '9' is not defined", "Unknown output mode");
  const Texts pins = pinsOf(*loading.component(0));
  const IBISComponent* const before = loading.component(0);
  fs::remove(loading.input.file("input.ibs"));
  loading.load.read();
  EXPECT_EQ(loading.errors(), errors);
  EXPECT_MESSAGES(loading.data().warnings);
  EXPECT_EQ(loading.data().components.size(), 1U);
  EXPECT_EQ(loading.component(0), before);
  EXPECT_EQ(pinsOf(*loading.component(0)), pins);
  EXPECT_EQ(textsOf(loading.data().modelSelections), Texts({"none"}));
  EXPECT_TRUE(loading.load.sourceWasRead());
}

// A sink whose targets throw what is no exception of the library.
class ThrowingSink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string&) override {
    return std::make_unique<Target>();
  }
  bool keep(const std::string&) override { return ++kept > 0; }

  int kept = 0;

 private:
  class Target final : public SinkTarget {
   public:
    bool write(std::string_view) override { throw 7; }
    bool close() override { return true; }
  };
};

// The end of the library is written as its file is closed, where the page is opened.
TEST(Load, LetsAnyExceptionOfTheSinkPassAndTellsOfTheFile) {
  Loading loading(fileOf(component()));
  ThrowingSink sink;
  EXPECT_THROW(loading.load.write(sink), int);
  EXPECT_MESSAGES(loading.errors(),
                  "Cannot write output file '" + loading.output.path() + "/dut.lb'\n");
  EXPECT_EQ(sink.kept, 0);
}

TEST(Load, KeepsTheCanonicalPathOfTheSource) {
  const Loading loading(fileOf(component()));
  fs::create_symlink("input.ibs", loading.input.file("link.ibs"));
  Load linked(requestFor(loading.input.file("./link.ibs"), loading.output.path(), {}));
  linked.read();
  EXPECT_TRUE(linked.sourceWasRead());
  EXPECT_EQ(linked.file().data().filePath, loading.input.file("input.ibs"));
}

TEST(Load, SaysNothingOfASourceThatCannotBeOpened) {
  const TemporaryFolder folder;
  for (const std::string& source : {folder.file("missing.ibs"), folder.path(), std::string("\n")}) {
    Load load(requestFor(source, folder.path(), {.selections = {"any"}}));
    load.read();
    EXPECT_FALSE(load.sourceWasRead()) << source;
    EXPECT_MESSAGES(load.file().data().errors);
    EXPECT_MESSAGES(load.file().data().warnings);
    EXPECT_EQ(load.file().data().filePath, "");
    EXPECT_EQ(load.write(), Texts());
  }
}

TEST(Load, CountsAFileBeyondTheLargestSizeAsOneThatCannotBeOpened) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("large.ibs"), fileOf(component()));
  fs::resize_file(folder.file("large.ibs"), 2147483647);  // a hole, which takes no room
  Load load(requestFor(folder.file("large.ibs"), folder.path(), {}));
  load.read();
  EXPECT_FALSE(load.sourceWasRead());
  EXPECT_MESSAGES(load.file().data().errors);
  EXPECT_EQ(load.chosenComponent(), nullptr);
}

TEST(Load, ChecksComponentAndModeWithoutASource) {
  const TemporaryFolder folder;
  Load load(requestFor(folder.file("missing.ibs"), folder.path(),
                       {.mode = "netlist", .component = "Amp"}));
  load.read();
  EXPECT_MESSAGES(load.file().data().errors, "Component name 'Amp' not found in IBIS file",
                  "Unknown output mode");
}

TEST(Load, ChecksOnlyTheModeWithoutASourceAndAComponentName) {
  const TemporaryFolder folder;
  Load load(requestFor(folder.file("missing.ibs"), folder.path(), {.mode = "netlist"}));
  load.read();
  EXPECT_MESSAGES(load.file().data().errors, "Unknown output mode");
}

TEST(Load, ChecksNothingWithoutASourceName) {
  const TemporaryFolder folder;
  Load load(requestFor("", folder.path(),
                       {.mode = "netlist", .component = "Amp", .selections = {"a\\sb"}}));
  load.read();
  EXPECT_MESSAGES(load.file().data().errors, "Cannot open IBIS file source ''");
  EXPECT_FALSE(load.sourceWasRead());
  EXPECT_EQ(textsOf(load.file().data().modelSelections), Texts({"a b"}));
  EXPECT_EQ(load.file().data().userSubcircuitName, "dut");
}

TEST(Load, ReadsAnEmptyFile) {
  const Loading loading("");
  EXPECT_TRUE(loading.load.sourceWasRead());
  EXPECT_MESSAGES(loading.errors());
  EXPECT_EQ(loading.data().filePath, loading.input.file("input.ibs"));
}

TEST(Load, LeavesSelectionsUncheckedAfterAnErrorOfTheParser) {
  const std::string text = fileOf(component() + "[Submodel] Extra\n");
  const Loading loading(text, {.mode = "all", .component = "Other", .selections = {"any"}});
  EXPECT_MESSAGES(loading.errors(), "Line 7: Keyword 'Submodel' not supported",
                  "Component name 'Other' not found in IBIS file", "Unknown output mode");
}

TEST(Load, LeavesPinsUnpreparedAfterAnErrorOfTheParser) {
  const Loading loading(fileOf(component() + "[Submodel] Extra\n"), {.component = "Amp"});
  EXPECT_MESSAGES(loading.errors(), "Line 7: Keyword 'Submodel' not supported");
  EXPECT_EQ(pinsOf(*loading.component(0)), Texts());
}

TEST(Load, LeavesTheMessagesOfTheScannerUnread) {
  const std::string text =
      component() + "[Mistyped] keyword\n[Comment Char] #_chars\n[Submodel] a\n";
  const Loaded loaded = loadText("[IBIS Ver] 4.2\n" + text);
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings);
  EXPECT_EQ(loaded.written, Texts({"dut.lb", "dut_INFO.html"}));
}

TEST(Load, MissesAPackageModelInPackageModeAlone) {
  const std::string text = fileOf(component() + "[Package Model] Case\n");
  const Loading package(text, {.mode = "package", .component = "Amp"});
  EXPECT_MESSAGES(package.errors(),
                  "Component 'Amp' specifies package model 'Case', but a definition for that "
                  "package could not be found");
  for (const char* mode : {"", "model", "script", "symbol"}) {
    const Loading other(text, {.mode = mode, .component = "Amp"});
    EXPECT_MESSAGES(other.errors());
  }
}

TEST(Load, MissesNoPackageModelWithoutAComponentName) {
  const std::string text = fileOf(component() + "[Package Model] Case\n");
  const Loaded loaded = loadText(text, {.mode = "package"});
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_EQ(loaded.written, Texts({"dut.lb"}));
}

TEST(Load, MissesThePackageModelOfTheFirstComponentOfTheName) {
  const std::string with = component() + "[Package Model] Case\n";
  const LoadOptions options = {.mode = "package", .component = "Amp"};
  const Loading first(fileOf(with + component()), options);
  EXPECT_MESSAGES(first.errors(),
                  "Component 'Amp' specifies package model 'Case', but a definition for that "
                  "package could not be found");
  const Loading last(fileOf(component() + with), options);
  EXPECT_MESSAGES(last.errors());
}

TEST(Load, ReadsAllLineEndsAlike) {
  const std::string text = fileOf(component());
  const Loaded expected = loadText(text);
  for (const char* lineEnd : {"\r", "\r\n"}) {
    std::string other;
    for (const char c : text) other += c == '\n' ? lineEnd : std::string(1, c);
    EXPECT_EQ(loadText(other).files, expected.files);
  }
  EXPECT_EQ(lineOf(expected.files.at("dut.lb"), 4), "** Manufacturer:       Maker");
}

TEST(Load, ExpandsBothTemplatesOfModelModeIntoFilesOfTheirOwn) {
  const Loaded loaded = loadText(fileOf(component()));
  const std::string& library = loaded.files.at("dut.lb");
  const std::string& page = loaded.files.at("dut_INFO.html");
  EXPECT_EQ(library.substr(library.size() - 11), ".ENDS\n\n\n\n\n\n");
  EXPECT_EQ(lineOf(page, 1), "<html>");
  EXPECT_EQ(page.substr(page.size() - 7), "</html>");
}

TEST(Load, ReadsATextInPlaceOfTheSource) {
  const TemporaryFolder output;
  LoadRequest request = requestFor("nowhere.ibs", output.path(), {.mode = "script"});
  request.text = "[IBIS Ver] 4.2\r[Component] Amp\r";
  Load load(std::move(request));
  load.read();
  EXPECT_TRUE(load.sourceWasRead());
  EXPECT_EQ(load.text(), "[IBIS Ver] 4.2\n[Component] Amp\n");
  EXPECT_MESSAGES(load.file().data().errors);
  EXPECT_EQ(load.chosenComponent()->name, "Amp");
}

TEST(Load, ChangesRecordsBetweenReadingAndResolving) {
  const TemporaryFolder output;
  LoadRequest request = requestFor("nowhere.ibs", output.path(), {});
  request.text = selectorFile();
  request.adapt = [](IBISFileData& file) {
    auto& rows = file.modelSelectors.at(0).rows;
    std::swap(rows.at(0), rows.at(1));
  };
  Load load(std::move(request));
  load.read();
  EXPECT_EQ(load.chosenComponent()->pins.at(0).model->name, "POWER");
}

TEST(Load, ToleratesWhatTheReaderMayAndNothingElse) {
  const TemporaryFolder output;
  LoadRequest request =
      requestFor("nowhere.ibs", output.path(), {.mode = "script", .component = "None"});
  request.reading = {.newerVersions = true, .keepGoing = true};
  request.text = "[IBIS Ver] 6.0\n[Component] Amp\n[Submodel] Extra\n";
  Load load(std::move(request));
  load.read();
  EXPECT_MESSAGES(load.file().data().warnings, "Version '6.0' is read as far as version 4.2 goes",
                  "Line 3: Keyword 'Submodel' not supported");
  EXPECT_MESSAGES(load.file().data().errors, "Component name 'None' not found in IBIS file");
}

}  // namespace
}  // namespace ibis::testing
