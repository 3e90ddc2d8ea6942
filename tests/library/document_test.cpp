#include "ibis/document.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

const ReadOptions everything{.newerVersions = true, .keepGoing = true};

std::string driver(const std::string& name, const std::string& more = {}) {
  return "[Model] " + name + "\nModel_type Output\n" + more +
         "[Voltage Range] 3.3 3.0 3.6\n[Pulldown]\n0 0\n1 10m\n[Pullup]\n0 0\n1 -10m\n"
         "[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n";
}

std::string fileWith(const std::string& sections, const std::string& version = "4.2") {
  return "[IBIS Ver] " + version + "\n[Component] Part\n[Pin] signal_name model_name\n1 S Drv\n" +
         sections + "[End]\n";
}

const std::string estimated =
    "Model Drv: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";

TEST(Document, TiesPinsToTheirModels) {
  const Document document = readText(fileWith(driver("Drv")));
  EXPECT_FALSE(document.hasErrors());
  ASSERT_EQ(document.file().components.size(), 1U);
  const IBISPin& pin = document.file().components[0]->pins[0];
  ASSERT_NE(pin.model, nullptr);
  EXPECT_EQ(pin.model->name, "Drv");
  EXPECT_EQ(pin.model->pullupReference.typ, 3.3);
  EXPECT_TRUE(pin.model->isSound);
  EXPECT_MESSAGES(document.diagnostics(), estimated);
}

TEST(Document, KeepsItsRecordsInPlaceWhenItMoves) {
  Document first = readText(fileWith(driver("Drv")));
  const IBISPin* pin = &first.file().components[0]->pins[0];
  const Document second = std::move(first);
  EXPECT_EQ(&second.file().components[0]->pins[0], pin);
  EXPECT_EQ(pin->signal_name, "S");
  first = readText(fileWith(driver("Other")));
  EXPECT_EQ(first.file().models[3]->name, "Other");
}

TEST(Document, OwnsTheTextOfItsRecords) {
  std::string text = fileWith(driver("Drv"));
  const Document document = readText(text);
  text.assign(text.size(), '#');
  EXPECT_EQ(document.file().models[3]->name, "Drv");
}

TEST(Document, ReadsAFileOfAnyLineEnds) {
  const TemporaryFolder folder;
  std::string text = fileWith(driver("Drv"));
  std::ranges::replace(text, '\n', '\r');
  writeWholeFile(folder.file("a.ibs"), text);
  const Document document = read(folder.file("a.ibs"));
  EXPECT_EQ(document.file().components[0]->pins.size(), 1U);
  EXPECT_EQ(document.file().filePath, folder.file("a.ibs"));
  EXPECT_EQ(readText(text).file().components[0]->pins.size(), 1U);
}

TEST(Document, TellsAFileThatCannotBeRead) {
  const TemporaryFolder folder;
  for (const std::string& name : {folder.file("none.ibs"), folder.path(), std::string()}) {
    const Document document = read(name);
    EXPECT_TRUE(document.hasErrors());
    EXPECT_MESSAGES(document.diagnostics(), "Cannot open IBIS file source '" + name + "'");
    EXPECT_TRUE(document.file().components.empty());
  }
}

TEST(Document, SortsWhatItTellsByLine) {
  const Document document = readText(
      "[IBIS Ver] 4.2\n[Component] Part\n[Pin] signal_name model_name\n1 S Drv\n2 T None\n"
      "3 U No\n" +
      driver("Drv") + "[End]\n");
  EXPECT_TRUE(document.hasErrors());
  EXPECT_MESSAGES(document.diagnostics(),
                  "Line 5: Model referenced by pin '2' has not been defined",
                  "Line 6: Model referenced by pin '3' has not been defined", estimated);
}

TEST(Document, RefusesANewerVersionUnlessAllowed) {
  const std::string text = fileWith(driver("Drv"), "7.2");
  const Document refused = readText(text);
  EXPECT_TRUE(refused.hasErrors());
  EXPECT_MESSAGES(refused.diagnostics(), "Version '7.2' not supported. Aborting IBIS");
  EXPECT_EQ(refused.diagnostics()[0].line, 1);
  EXPECT_TRUE(refused.file().components.empty());
  const Document kept = readText(text, {.keepGoing = true});
  EXPECT_TRUE(kept.hasErrors());

  const Document read = readText(text, {.newerVersions = true});
  EXPECT_FALSE(read.hasErrors());
  EXPECT_MESSAGES(read.diagnostics(), "Version '7.2' is read as far as version 4.2 goes",
                  estimated);
  EXPECT_EQ(read.file().components.size(), 1U);
}

TEST(Document, ReadsAnUnknownVersionIfItKeepsGoing) {
  const std::string text = fileWith(driver("Drv"), "4.3");
  EXPECT_TRUE(readText(text, {.newerVersions = true}).hasErrors());
  const Document read = readText(text, everything);
  EXPECT_FALSE(read.hasErrors());
  EXPECT_MESSAGES(read.diagnostics(), "Unknown version '4.3'. Aborting IBIS", estimated);
  EXPECT_EQ(read.file().components.size(), 1U);
}

TEST(Document, PassesOverLaterKeywordsWithWhatBelongsToThem) {
  const std::string waveform =
      "[Rising Waveform]\nR_fixture 50\nV_fixture 0\n0 0\n1n 3\n"
      "[Composite_Current]\n0 1m\n1n 2m\n"
      "[Falling Waveform]\nR_fixture 50\nV_fixture 0\n0 3\n1n 0\n"
      "[composite current]\n0 1m\n"
      "[Algorithmic Model]\nExecutable linux x.so x.ami\n[Pullup]\n5 5\n[End Algorithmic Model]\n";
  const Document document = readText(
      fileWith(driver("Drv") + waveform + "[Interconnect Model Set] A\n[Manufacturer] M\nrows\n" +
                   driver("Second"),
               "7.0"),
      {.newerVersions = true});
  EXPECT_FALSE(document.hasErrors());
  ASSERT_EQ(document.file().models.size(), 5U);
  const IBISModel& model = *document.file().models[3];
  ASSERT_EQ(model.risingWaveforms.size(), 1U);
  EXPECT_EQ(model.risingWaveforms[0].time.size(), 2);
  EXPECT_EQ(model.fallingWaveforms[0].time.size(), 2);
  EXPECT_EQ(model.pullup.voltage.size(), 2);
  EXPECT_MESSAGES(
      document.diagnostics(), "Version '7.0' is read as far as version 4.2 goes",
      "Line 22: Keyword 'Composite Current' came after version 4.2 and is passed over",
      "Line 32: Keyword 'Algorithmic Model' came after version 4.2 and is passed over",
      "Line 37: Keyword 'Interconnect Model Set' came after version 4.2 and is passed over",
      "Model Second: Estimated waveform as no waveform data in model file. Waveform may deviate "
      "substantially from actual device");
}

TEST(Document, GivesLaterKeywordsToTheReaderAheadUnlessAllowed) {
  const Document document = readText(
      fileWith(driver("Drv") + "[Rising Waveform]\nR_fixture 50\n0 0\n1n 3\n[Composite Current]\n"
                               "2n 1m\n"));
  EXPECT_EQ(document.file().models[3]->risingWaveforms[0].time.size(), 3);
}

TEST(Document, ObeysACommentCharInWhatIsPassedOver) {
  const Document document = readText(
      fileWith("[Begin EMI Component] E\n[Comment Char] #_char\n[End EMI Component]\n# gone\n" +
               driver("Drv")),
      {.newerVersions = true});
  EXPECT_FALSE(document.hasErrors());
  EXPECT_EQ(document.file().models.size(), 4U);
}

TEST(Document, GoesOnBehindASectionThatALoadRefuses) {
  const std::string text = fileWith("[Submodel] Sub\nSubmodel_type Bus_hold\n[Pullup]\n0 0\n" +
                                    driver("Drv") + "[Date] late\nmore\n" + driver("Second"));
  const Document refused = readText(text);
  EXPECT_MESSAGES(refused.diagnostics(), "Line 5: Keyword 'Submodel' not supported");
  const Document read = readText(text, everything);
  EXPECT_FALSE(read.hasErrors());
  ASSERT_EQ(read.file().models.size(), 5U);
  EXPECT_TRUE(read.file().models[3]->isSound);
  EXPECT_EQ(read.file().models[3]->pullup.voltage.size(), 2);
  EXPECT_MESSAGES(
      read.diagnostics(), "Line 5: Keyword 'Submodel' not supported", estimated,
      "Model Second: Estimated waveform as no waveform data in model file. Waveform may "
      "deviate substantially from actual device");
}

TEST(Document, TellsWhatALoadRefusesOfAComponentAndReadsIt) {
  const Document read = readText(
      "[IBIS Ver] 4.2\n[Component] Part\n[Pin] signal_name model_name\n1 S Drv\n2 V POWER\n"
      "[Pin Mapping] pulldown_ref pullup_ref\n1 GNDBUS PWRBUS\n[Diff Pin] inv_pin vdiff\n1 9 "
      "0.2\n" +
          driver("Drv") + "[End]\n",
      everything);
  EXPECT_FALSE(read.hasErrors());
  EXPECT_EQ(read.file().components[0]->pinMappings.size(), 1U);
  EXPECT_MESSAGES(read.diagnostics(), "Line 6: Pin Mapping is not currently supported",
                  "Line 9: Inverting [Diff Pin] '9' is not defined", estimated);
}

TEST(Document, MarksModelsThatALoadRefuses) {
  const Document read =
      readText(fileWith(driver("Drv") + "[Model] Ecl\nModel_type Output_ECL\n" +
                        driver("Clamped", "").replace(0, 0, "") +
                        "[POWER Clamp Reference] 5 5 5\n" + driver("Scheduled") +
                        "[Driver Schedule]\nDrv 0 NA NA 0\n" + "[Model] Bare\nModel_type I/O\n"),
               everything);
  EXPECT_FALSE(read.hasErrors());
  std::vector<std::pair<std::string, bool>> sound;
  for (const auto& model : read.file().models)
    sound.emplace_back(model->name.str(), model->isSound);
  const std::vector<std::pair<std::string, bool>> expected = {
      {"GND", true},  {"POWER", true},    {"NC", true},         {"Drv", true},
      {"Ecl", false}, {"Clamped", false}, {"Scheduled", false}, {"Bare", false}};
  EXPECT_EQ(sound, expected);
}

TEST(Document, ReadsSoundModelsAsWithoutOptions) {
  for (const std::string name :
       {"differential_link.ibs", "oddities.ibs", "package_60.ibs", "push_pull_buffer.ibs"}) {
    SCOPED_TRACE(name);
    const std::string path = IBIS_SOURCE_DIR "/examples/" + name;
    const Document plain = read(path);
    const Document tolerant = read(path, everything);
    EXPECT_FALSE(plain.hasErrors());
    EXPECT_EQ(texts(plain.diagnostics()), texts(tolerant.diagnostics()));
    ASSERT_EQ(plain.file().models.size(), tolerant.file().models.size());
    for (std::size_t i = 0; i < plain.file().models.size(); ++i) {
      const IBISModel& a = *plain.file().models[i];
      const IBISModel& b = *tolerant.file().models[i];
      EXPECT_EQ(a.name, b.name);
      EXPECT_EQ(a.pullup.typ, b.pullup.typ);
      EXPECT_EQ(a.pulldown.max, b.pulldown.max);
      EXPECT_EQ(a.vinl, b.vinl);
      EXPECT_EQ(a.pullupReference, b.pullupReference);
      EXPECT_EQ(a.risingWaveforms.size(), b.risingWaveforms.size());
      EXPECT_TRUE(b.isSound);
    }
  }
}

TEST(Document, TakesTheModelThatASelectionDescribes) {
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] Part\n[Pin] signal_name model_name\n1 S Speed\n"
      "[Model Selector] Speed\nDrv slow edges\nFast fast edges\n" +
      driver("Drv") + driver("Fast") + "[End]\n";
  const auto modelOfPin = [](const Document& document) {
    return document.file().components[0]->pins[0].model->name.str();
  };
  EXPECT_EQ(modelOfPin(readText(text)), "Drv");
  EXPECT_EQ(modelOfPin(readText(text, {.selections = {"fast edges"}})), "Fast");
  EXPECT_EQ(modelOfPin(readText(text, {.selections = {"Speed=Fast"}})), "Fast");
  const Document unknown = readText(text, {.keepGoing = true, .selections = {"no edges"}});
  EXPECT_FALSE(unknown.hasErrors());
  EXPECT_EQ(texts(unknown.diagnostics())[0], "Model selector 'no edges' not found in IBIS file");
}

TEST(Document, TakesAnyBytes) {
  std::string noise;
  for (int i = 0; i < 4096; ++i) noise += static_cast<char>(i * 37 + i / 7);
  EXPECT_TRUE(readText(noise, everything).file().components.empty());
  EXPECT_FALSE(readText("", everything).hasErrors());
  EXPECT_TRUE(readText("", everything).diagnostics().empty());
}

}  // namespace
}  // namespace ibis::testing
