#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;

Outcome call(const std::string& request, const std::vector<std::string>& options = {}) {
  std::vector<std::string> words = {"call"};
  words.insert(words.end(), options.begin(), options.end());
  return run(words, {.input = request});
}

// The loader gives its reason in the words of the C library.
const std::string noSuchFile = ": cannot open shared object file: No such file or directory\n";

const std::string smallRequest = R"([[""],[]])";
const std::string smallResult = R"(["2","","0","1","Cannot open IBIS file source ''"])"
                                "\n";

std::string libraryFolder() {
  return std::filesystem::path(IBIS_PROGRAM_PATH).parent_path().parent_path() / "lib/ibis-load";
}

TEST(Call, PrintsTheResultOnOneLine) {
  const TemporaryFolder folder;
  const std::string source = folder.write("warning.ibs", warningText);
  const json request = {{source}, {"model", "BUF-1", folder.path(), "dut"}, {"1"}, json::array()};
  const Outcome result = call(request.dump());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"(["1",")" + folder.path() +
                            R"(","2","0","Model 'in': Vinl not defined using default 0.8V",)"
                            R"("Model 'in': Vinh not defined using default 2.0V"])"
                            "\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"dut.lb", "dut_INFO.html", "warning.ibs"}));
}

TEST(Call, AResultWithErrorsIsStillACallThatWasMade) {
  const Outcome result = call(smallRequest);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, smallResult);
}

TEST(Call, TakesTwoToFourArrays) {
  for (const std::string request : {R"([[""],[]])", R"([[""],[],[]])", R"([[""],[],[],[]])"}) {
    EXPECT_EQ(call(request).out, smallResult) << request;
  }
}

TEST(Call, TakesEmptyArraysForEmptyTexts) { EXPECT_EQ(call("[[],[]]").out, smallResult); }

TEST(Call, TakesBlanksAndLineEndsAroundTheRequest) {
  EXPECT_EQ(call("\n [ [\"\"] ,\n [ ] ] \n\n").out, smallResult);
}

TEST(Call, KeepsTheEscapesOfSelections) {
  const TemporaryFolder folder;
  const json request = {{folder.write("buffer.ibs", bufferText)}, {""}, json::array(), {R"(a\sb)"}};
  EXPECT_EQ(json::parse(call(request.dump()).out),
            (json{"2", "", "0", "1", "Model selector 'a b' not found in IBIS file"}));
}

TEST(Call, BytesThatAreNotUtf8BecomeReplacementCharacters) {
  const TemporaryFolder folder;
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] X\n[Pin] signal_name model_name\n\xff\xe2\x82 A none\n";
  const json request = {{folder.write("bytes.ibs", text)}, {"model", "", folder.path()}};
  const Outcome result = call(request.dump());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.out)[4],
            "Line 4: Model referenced by pin '\uFFFD\uFFFD' has not been defined");
}

TEST(Call, RefusesAMalformedRequestAndSaysWhy) {
  const struct {
    std::string request;
    std::string reason;
  } cases[] = {
      {"{}", "it is not an array"},
      {"null", "it is not an array"},
      {R"("text")", "it is not an array"},
      {"[]", "it has 0 items, not two to four"},
      {R"([["a"]])", "it has 1 items, not two to four"},
      {"[[],[],[],[],[]]", "it has 5 items, not two to four"},
      {R"(["a",[]])", "[0] is not an array"},
      {R"([["a"],{}])", "[1] is not an array"},
      {R"([["a"],[],null])", "[2] is not an array"},
      {R"([[7],[]])", "[0][0] is not a string"},
      {R"([["a"],["model",null]])", "[1][1] is not a string"},
      {R"([["a"],[],[],[["b"]]])", "[3][0] is not a string"},
      {R"([["a\u0000b"],[]])", "[0][0] holds a NUL"},
      {R"([["a"],["","","\u0000"]])", "[1][2] holds a NUL"},
  };
  for (const auto& [request, reason] : cases) {
    const Outcome result = call(request);
    EXPECT_EQ(result.status, 2) << request;
    EXPECT_EQ(result.out, "") << request;
    EXPECT_EQ(result.err, "ibis-load: error: malformed request: " + reason + '\n');
  }
}

TEST(Call, RefusesATextThatIsNotJson) {
  const std::string inFront = "ibis-load: error: malformed request: parse error at line ";
  for (const std::string request : {"", " ", "[[\"a\"],[]", "[[\"a\"],[]] x", "[['a'],[]]",
                                    "[[\"\xff\"],[]]", "[[\"\\ud800\"],[]]", "[[\"a\"],[],]"}) {
    const Outcome result = call(request);
    EXPECT_EQ(result.status, 2) << request;
    EXPECT_EQ(result.out, "") << request;
    EXPECT_EQ(result.err.substr(0, inFront.size()), inFront) << request;
  }
}

TEST(Call, TellsWhereATextStopsBeingJson) {
  EXPECT_EQ(call("[[\"a\"],[]").err,
            "ibis-load: error: malformed request: parse error at line 1, column 10: syntax error "
            "while parsing array - unexpected end of input; expected ']'\n");
}

TEST(Call, LoadsThePluginAtAPath) {
  EXPECT_EQ(call(smallRequest, {"--plugin", libraryFolder() + "/ibis_load.so"}).out, smallResult);
}

TEST(Call, APluginThatIsMissingHasTheLoadersReason) {
  const Outcome result = call(smallRequest, {"--plugin", "/no/such/plugin.so"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "ibis-load: error: cannot load the plug-in: /no/such/plugin.so" + noSuchFile);
}

TEST(Call, APluginWithoutAFolderIsLookedForInTheCurrentOne) {
  const Outcome result = call(smallRequest, {"--plugin", "libibis_support.so.missing"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err,
            "ibis-load: error: cannot load the plug-in: ./libibis_support.so.missing" + noSuchFile);
}

TEST(Call, AFileThatIsNoLibraryIsNoPlugin) {
  const TemporaryFolder folder;
  const std::string plugin = folder.write("plugin.so", std::string(200, 'x'));
  const Outcome result = call(smallRequest, {"--plugin", plugin});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err,
            "ibis-load: error: cannot load the plug-in: " + plugin + ": invalid ELF header\n");
}

TEST(Call, ALibraryThatRegistersNothingIsNoPlugin) {
  const std::string library = libraryFolder() + "/libibis_support.so";
  const Outcome result = call(smallRequest, {"--plugin", library});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "ibis-load: error: '" + library + "' registers no function IBIS_Load\n");
}

TEST(Call, AMalformedRequestIsToldAheadOfAMissingPlugin) {
  EXPECT_EQ(call("{}", {"--plugin", "/no/such/plugin.so"}).err,
            "ibis-load: error: malformed request: it is not an array\n");
}

TEST(Call, FindsItsPluginFromAnyFolderAndThroughALink) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(IBIS_PROGRAM_PATH, folder.file("program"));
  const Outcome result =
      run({"call"},
          {.input = smallRequest, .program = folder.file("program"), .folder = folder.path()});
  EXPECT_EQ(result.out, smallResult);
}

TEST(Call, AReaderThatLeftEndsInStatusOne) {
  const Outcome result = run({"call"}, {.input = smallRequest, .outputHasNoReader = true});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ibis-load: error: cannot write to standard output\n");
}

TEST(Call, AFullStandardOutputEndsInStatusOne) {
  const Outcome result = run({"call"}, {.input = smallRequest, .output = "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ibis-load: error: cannot write to standard output\n");
}

}  // namespace
}  // namespace ibis::testing
