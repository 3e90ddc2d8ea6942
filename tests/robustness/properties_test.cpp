#include <algorithm>
#include <random>

#include "harness/library_lines.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

// What one load gave and left behind.
struct Outcome {
  Texts strings;
  Files files;

  bool operator==(const Outcome&) const = default;
};

// Loads one text after the other under the same names, so that outcomes can be compared.
class Loader {
 public:
  Outcome load(std::string_view text, const std::string& mode) const {
    writeWholeFile(input_.file("input.ibs"), text);
    Outcome outcome;
    outcome.strings = callLoad(request(mode));
    outcome.files = output_.contents();
    for (const auto& [name, content] : outcome.files) std::filesystem::remove(output_.file(name));
    return outcome;
  }

  // The names that a load says it wrote and those that it left, both without the folder.
  std::pair<Texts, Texts> names(std::string_view text, const std::string& mode) const {
    writeWholeFile(input_.file("input.ibs"), text);
    Load load(request(mode));
    load.read();
    Texts told;
    for (const std::string& name : load.write()) {
      told.push_back(std::filesystem::path(name).filename().string());
    }
    Texts left;
    for (const auto& [name, content] : output_.contents()) {
      left.push_back(name);
      std::filesystem::remove(output_.file(name));
    }
    return {told, left};
  }

 private:
  LoadRequest request(const std::string& mode) const {
    return {.source = input_.file("input.ibs"),
            .mode = mode,
            .component = {},
            .rootDirectory = output_.path(),
            .subcircuit = "dut",
            .pins = {},
            .selections = {}};
  }

  TemporaryFolder input_;
  TemporaryFolder output_;
};

// Status, counts and messages agree with each other.
void expectSoundResult(const Texts& strings) {
  ASSERT_GE(strings.size(), 4u);
  const std::size_t warnings = std::stoul(strings[2]);
  const std::size_t errors = std::stoul(strings[3]);
  EXPECT_EQ(strings.size(), 4 + warnings + errors);
  EXPECT_EQ(strings[0], errors > 0 ? "2" : warnings > 0 ? "1" : "0");
  EXPECT_EQ(std::ranges::count(strings, "(null)"), 0);
}

std::string repeated(std::string_view text, int count) {
  std::string whole;
  for (int i = 0; i < count; ++i) whole += text;
  return whole;
}

const std::string head = "[IBIS Ver] 4.2\n[Component] Part\n[Manufacturer] Maker\n";
const std::string pins = "[Pin] signal_name model_name\n";
const std::string input = "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n";

// Texts that no maker writes.
const Texts oddTexts = {
    "",
    "\n\n\n",
    std::string(1000, '\0'),
    std::string("\xef\xbb\xbf") + smallText,
    repeated("[", 5000),
    repeated("[Component]\n", 500),
    head + pins + repeated("1 a in\n", 200) + input,
    head + pins + repeated("1\n", 200) + input,
    head + "[Package Model] p\n" + pins + "1 a in\n" + input +
        "[Define Package Model] p\n[Number Of Pins] 50\n",
    head + pins + "1 " + std::string(300, 'a') + " in\n" + input,
    head + pins + "1 a in\n[Model] in\nModel_type Input\nVinl = nan\nVinh = inf\n" +
        repeated("[Pulldown]\n1e999 -nan 0x1p-2000 NA\n", 50),
    head + pins + "1 a \x01\x7f\x80\xff\n" + "[Model] \x01\x7f\x80\xff\nModel_type Input\n",
    head + pins + "1 a in\n" + repeated("[Diff Pin] vdiff inv_pin\n1 1 1\n2 1\n", 50) + input,
    head + pins + "1 a s\n" + repeated("[Model Selector] s\ns s\nin s\n", 50) + input,
    smallText.substr(0, smallText.size() / 2) + smallText,
    repeated(smallText, 3),
    "[IBIS Ver] 4.2\n[Source]\n.INCLUDE a\n\v.INCLUDE b\n[Component] .ENDS\n" + pins +
        "1 .END in\n2 *x in\n3 \f.END in\n4 $'\"=(),[]# in\n" + input,
};

Texts allTexts() {
  Texts texts = oddTexts;
  texts.push_back(smallText);
  for (const std::string& name : exampleNames) texts.push_back(exampleText(name));
  return texts;
}

Texts splitLines(const std::string& text) {
  Texts items;
  std::size_t begin = 0;
  for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n', begin)) {
    items.push_back(text.substr(begin, end + 1 - begin));
    begin = end + 1;
  }
  if (begin < text.size()) items.push_back(text.substr(begin));
  return items;
}

const Texts everyMode = {"model", "package", "script", "symbol", "netlist"};

// Calls check(text, mode) for each text in each mode.
template <class Check>
void forEachCase(Check check) {
  const Texts texts = allTexts();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (const std::string& mode : everyMode) {
      SCOPED_TRACE("text " + std::to_string(i) + ", mode " + mode);
      check(texts[i], mode);
    }
  }
}

TEST(Properties, TheResultHoldsAsManyTextsAsItSays) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    expectSoundResult(loader.load(text, mode).strings);
  });
}

TEST(Properties, TheSameInputGivesTheSameBytes) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    const Outcome once = loader.load(text, mode);
    EXPECT_EQ(loader.load(text, mode), once);
  });
}

TEST(Properties, AFileIsThereIfTheLoadSaysSo) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    const auto [told, left] = loader.names(text, mode);
    EXPECT_EQ(told, left);
  });
}

TEST(Properties, NoFileIsThereWithAnError) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    const Outcome outcome = loader.load(text, mode);
    EXPECT_TRUE(outcome.strings[0] != "2" || outcome.files.empty());
  });
}

TEST(Properties, NoWordOfTheFileBeginsALineOfALibrary) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    const Files files = loader.load(text, mode).files;
    if (!files.contains("dut.lb")) return;
    for (const std::string& line : splitLines(files.at("dut.lb"))) {
      EXPECT_TRUE(beginsAsTemplatesDo(line)) << line;
    }
  });
}

// Every kind of line end becomes one line feed.
std::string withLineFeeds(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    plain += text[i] == '\r' ? '\n' : text[i];
  }
  return plain;
}

std::string withLineEnds(const std::string& text, const std::string& end) {
  std::string spelled;
  for (const char c : withLineFeeds(text)) spelled += c == '\n' ? end : std::string(1, c);
  return spelled;
}

TEST(Properties, LineEndsOfEachKindGiveTheSame) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    const Outcome feeds = loader.load(withLineFeeds(text), mode);
    EXPECT_EQ(loader.load(withLineEnds(text, "\r\n"), mode), feeds);
    EXPECT_EQ(loader.load(withLineEnds(text, "\r"), mode), feeds);
  });
}

// The character that a [Comment Char] line names, else the one in use.
char commentCharBehind(const std::string& line, char current) {
  constexpr std::string_view name = "[comment char]";
  std::string opening = line.substr(0, name.size());
  std::ranges::replace(opening, '_', ' ');
  const std::size_t place = line.find_first_not_of(" \t", name.size());
  return equalIgnoringCase(opening, name) && place < line.size() ? line[place] : current;
}

constexpr int linesAhead = 2;

// A comment and a blank line ahead of each line.
std::string withRemarks(const std::string& text) {
  std::string remarked;
  char comment = '|';
  for (const std::string& line : splitLines(withLineFeeds(text))) {
    remarked += comment + std::string(" [Model] remark\n \t \n") + line;
    comment = commentCharBehind(line, comment);
  }
  return remarked;
}

// The message as it is when `linesAhead` lines were put ahead of each line.
std::string movedMessage(const std::string& message) {
  constexpr std::string_view digits = "0123456789";
  std::string moved = message;
  for (std::size_t i = 0; (i = moved.find("ine ", i)) != moved.npos;) {
    i += 4;
    const std::size_t end = std::min(moved.find_first_not_of(digits, i), moved.size());
    if (end == i) continue;
    const std::string number =
        std::to_string((linesAhead + 1) * std::stol(moved.substr(i, end - i)));
    moved.replace(i, end - i, number);
  }
  return moved;
}

// A keyword's name may run over line ends, where a remark would become a part of it.
bool hasOpenKeyword(const std::string& text) {
  return std::ranges::any_of(splitLines(text), [](const std::string& line) {
    return line.starts_with('[') && line.find(']') == line.npos;
  });
}

TEST(Properties, CommentsAndBlankLinesChangeLineNumbersAlone) {
  const Loader loader;
  forEachCase([&](const std::string& text, const std::string& mode) {
    if (hasOpenKeyword(text)) return;
    Outcome plain = loader.load(text, mode);
    std::ranges::transform(plain.strings, plain.strings.begin(), movedMessage);
    EXPECT_EQ(loader.load(withRemarks(text), mode), plain);
  });
}

// What holds of any bytes whatever; the modes take turns.
void expectSoundLoads(const Loader& loader, const Texts& texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string& mode = everyMode[i % everyMode.size()];
    SCOPED_TRACE("text " + std::to_string(i) + ", mode " + mode);
    const Outcome outcome = loader.load(texts[i], mode);
    expectSoundResult(outcome.strings);
    EXPECT_TRUE(outcome.strings[0] != "2" || outcome.files.empty());
    EXPECT_EQ(loader.load(texts[i], mode), outcome);
  }
}

class MutatedExamples : public ::testing::TestWithParam<std::string> {};

TEST_P(MutatedExamples, CutAtAnyPlaceGiveASoundResult) {
  constexpr std::size_t step = 97;
  const std::string text = exampleText(GetParam());
  Texts texts;
  for (std::size_t size = 0; size < text.size(); size += step) {
    texts.push_back(text.substr(0, size));
  }
  expectSoundLoads(Loader(), texts);
}

TEST_P(MutatedExamples, WithFlippedBytesGiveASoundResult) {
  constexpr int mutants = 100;
  constexpr int flips = 20;
  const std::string text = exampleText(GetParam());
  std::mt19937 dice(97);
  Texts texts;
  for (int i = 0; i < mutants; ++i) {
    std::string& mutant = texts.emplace_back(text);
    for (int flip = 0; flip < flips; ++flip) {
      char& byte = mutant[dice() % mutant.size()];
      byte = static_cast<char>(byte ^ (1 << dice() % 8));
    }
  }
  expectSoundLoads(Loader(), texts);
}

// Lines in an order that no reader expects.
TEST_P(MutatedExamples, WithShuffledLinesGiveASoundResult) {
  constexpr int mutants = 30;
  constexpr std::ptrdiff_t kept = 20;  // the header, without which nothing is read
  Texts items = splitLines(exampleText(GetParam()));
  std::mt19937 dice(1);
  Texts texts;
  for (int i = 0; i < mutants; ++i) {
    std::swap(items[dice() % items.size()], items[dice() % items.size()]);
    const auto begin = items.begin() + kept;
    std::rotate(begin, begin + static_cast<std::ptrdiff_t>(dice() % 400), items.end());
    std::string& mutant = texts.emplace_back();
    for (const std::string& item : items) mutant += item;
  }
  expectSoundLoads(Loader(), texts);
}

INSTANTIATE_TEST_SUITE_P(Examples, MutatedExamples, ::testing::ValuesIn(exampleNames),
                         [](const auto& each) {
                           return each.param.substr(0, each.param.find('.'));
                         });

}  // namespace
}  // namespace ibis::testing
