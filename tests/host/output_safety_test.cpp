#include "harness/harness.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

const std::string smallFile = lines({"[IBIS Ver] 4.2", "[Component] Chip", "[Manufacturer] Acme",
                                     "[Pin] signal_name model_name", "1 VSS GND", "[End]"});

TEST(OutputSafety, NeverOverwritesTheFileThatIsConverted) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("dut.lb"), smallFile);
  Load load({.source = folder.file("dut.lb"),
             .mode = "model",
             .rootDirectory = folder.path(),
             .subcircuit = "dut"});
  load.read();
  EXPECT_EQ(load.write(), Texts{folder.file("dut_INFO.html")});
  EXPECT_MESSAGES(load.file().data().errors,
                  "Cannot open output file '" + folder.file("dut.lb") + "'\n");
  EXPECT_EQ(readWholeFile(folder.file("dut.lb")), smallFile);
}

TEST(OutputSafety, NeverOverwritesItThroughALinkEither) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("chip.ibs"), smallFile);
  std::filesystem::create_symlink("chip.ibs", folder.file("dut.lb"));
  Load load({.source = folder.file("chip.ibs"),
             .mode = "package",
             .rootDirectory = folder.path(),
             .subcircuit = "dut"});
  load.read();
  EXPECT_EQ(load.write(), Texts());
  EXPECT_MESSAGES(load.file().data().errors,
                  "Cannot open output file '" + folder.file("dut.lb") + "'\n");
  EXPECT_EQ(readWholeFile(folder.file("chip.ibs")), smallFile);
}

TEST(OutputSafety, TellsOfAFileWhoseTextWasCut) {
  const TemporaryFolder folder;
  const IBISFile file;
  Recorder sink;
  FileSink files;
  TemplateEngine engine(file.data(), nullptr, folder.path(), sink, files);
  engine.openOutputFile(folder.file("cut"));
  engine.abandonOutputFile();
  EXPECT_MESSAGES(sink.errors, "Cannot write output file '" + folder.file("cut") + "'\n");
  engine.closeOutputFile();
  EXPECT_EQ(sink.errors.size(), 1U);
}

}  // namespace
}  // namespace ibis::testing
