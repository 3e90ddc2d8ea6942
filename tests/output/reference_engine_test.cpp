#include "output/reference_engine.h"

#include <random>
#include <set>

#include "harness/harness.h"
#include "output/embedded_templates.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

// A file with a little of everything that a template can ask for.
struct Device {
  explicit Device(const std::string& name = "/fuzz/seeds/whole_load/everything.ibs")
      : parsed(readWholeFile(IBIS_SOURCE_DIR + name)) {
    parsed.resolve();
    parsed.file.addUserModelSelector("fast");
    parsed.file.setUserSubcircuitName("dut");
    parsed.file.setFilePath("/device.ibs");
  }

  Parsed parsed;
};

struct Expansion {
  Texts errors;
  Texts generated;
  Files files;

  bool operator==(const Expansion&) const = default;
};

// What one engine makes of two texts, one after the other.
template <class Engine>
Expansion expand(const Device& device, const IBISComponent* component, const Texts& templates) {
  MemorySink sink;
  Recorder errors;
  Engine engine(device.parsed.file.data(), component, "root", errors, sink);
  for (const std::string& text : templates) {
    TextBuffer buffer(text);
    engine.expand(buffer);
  }
  engine.finish();
  return {texts(errors.errors), engine.generatedFiles(), sink.files()};
}

// The text as it can be printed.
std::string shown(const Texts& templates) {
  std::string text;
  for (const std::string& each : templates) text += ::testing::PrintToString(each) + '\n';
  return text;
}

Texts loopWords() {
  return {"forallmodels",
          "foreachcomponent",
          "foreachdiffpin",
          "foreachfilepin",
          "foreachgnd",
          "foreachinput",
          "foreachio",
          "foreachmodel",
          "foreachoutput",
          "foreachpin",
          "foreachpower",
          "foreachspicepin",
          "foreachtristate",
          "foreachterminator",
          "foreachwaveform",
          "foreachmodelselector",
          "foreachusermodelselector"};
}

Texts conditionWords() {
  return {"ifhaspackagemodel",
          "ifhasmodeltype,Output",
          "ifhasmodeltype,GND,",
          "ifhasmodeltype",
          "iffirst",
          "iffirst,x",
          "ifisdiff",
          "ifhaspullup",
          "ifhasclamps",
          "iftype,Input,Output",
          "ifhasinput",
          "ifhasivdata"};
}

// Every word of the embedded templates.
Texts wordsOfTemplates() {
  Texts words;
  for (const EmbeddedTemplate& each : embeddedTemplates()) {
    for (std::int32_t i = 0; i < each.lineCount; ++i) {
      std::string_view line = each.lines[i];
      for (std::size_t begin = line.find('%'); begin != line.npos; begin = line.find('%')) {
        const std::size_t end = line.find('%', begin + 1);
        if (end == line.npos) break;
        words.emplace_back(line.substr(begin + 1, end - begin - 1));
        line.remove_prefix(end + 1);
      }
    }
  }
  std::erase(words, "");
  return words;
}

// Makes templates of words in and out of their order.
class TemplateMaker {
 public:
  explicit TemplateMaker(std::uint32_t seed) : dice_(seed) {}

  std::string make() {
    std::string text = chance(5) ? "" : "%file% out" + std::to_string(below(3)) + "\n";
    for (std::size_t i = below(40) + 1; i > 0; --i) text += part(0);
    return text;
  }

 private:
  std::size_t below(std::size_t limit) { return dice_() % limit; }
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }
  const std::string& oneOf(const Texts& list) { return list[below(list.size())]; }

  std::string part(int depth) {
    if (depth < 3 && chance(4)) return structure(depth);
    return chance(3) ? keyword(oneOf(words_)) : plain();
  }

  std::string parts(int depth) {
    std::string text;
    for (std::size_t i = below(5); i > 0; --i) text += part(depth + 1);
    return text;
  }

  std::string structure(int depth) {
    if (chance(2)) return keyword(oneOf(loops_)) + parts(depth) + keyword("endforeach");
    std::string text = keyword(oneOf(conditions_)) + parts(depth);
    if (chance(2)) text += keyword("else") + parts(depth);
    return text + (chance(10) ? "" : keyword("endif"));
  }

  std::string keyword(std::string word) {
    if (chance(25)) word.insert(below(word.size() + 1), oneOf(oddities_));
    if (chance(25)) word[below(word.size())] = upperCase(word[0]);
    return '%' + word + (chance(40) ? "" : "%");
  }

  std::string plain() {
    if (chance(60)) return std::string(1, chance(2) ? '\0' : static_cast<char>(0x80 + below(128)));
    return oneOf(texts_);
  }

  std::mt19937 dice_;
  const Texts loops_ = loopWords();
  const Texts conditions_ = conditionWords();
  const Texts words_ = [] {
    Texts words = wordsOfTemplates();
    for (const Texts& list : {loopWords(), conditionWords()}) {
      words.insert(words.end(), list.begin(), list.end());
    }
    const Texts others = {"else",       "endif",     "endforeach", "ENDFOREACH", "Else",
                          "EndIf",      "x",         ",",          "gnd",        "nc,a",
                          "append",     "include",   "FILE",       " name ",     "file",
                          "name,x",     "name",      "spicename",  "rootdir",    "ibissource,** ",
                          "subcktname", "spicepairs"};
    for (int i = 0; i < 5; ++i) words.insert(words.end(), others.begin(), others.end());
    return words;
  }();
  const Texts oddities_ = {"\r", "\t", "\r\n", "\n# comment", "\n#\n# two\n",       "\n\r#", " ",
                           ",",  "#",  "\n",   "\x81",        std::string(130, 'k')};
  const Texts texts_ = {"a",
                        "b c",
                        " ",
                        "  ",
                        "\t",
                        "\n",
                        "\r",
                        "\r\n",
                        "\n#",
                        "\n# %x\n",
                        "#",
                        "\n\r#",
                        "%%",
                        "%",
                        "%% %%",
                        " \n",
                        "\n\n",
                        "a  b \t",
                        "(+)",
                        "\n ",
                        " %%\n",
                        "\r\r# ",
                        "%file% out1\n",
                        "%file% out2 rest\n",
                        "%file%\t \n",
                        "%file%\r out3\r\n",
                        "%file% nowhere%rootdir%\n"};
};

TEST(TemplateEngines, AgreeOnEveryEmbeddedTemplate) {
  const Device device;
  Texts all;
  for (const EmbeddedTemplate& each : embeddedTemplates()) {
    TextBuffer text;
    ASSERT_TRUE(loadEmbedded(text, each.name));
    all.emplace_back(text.text());
    for (const IBISComponent* component :
         {static_cast<const IBISComponent*>(nullptr),
          static_cast<const IBISComponent*>(device.parsed.file.data().components[0].get())}) {
      const Expansion expansion = expand<TemplateEngine>(device, component, {all.back()});
      EXPECT_EQ(expansion.generated.size(), 1U);
      EXPECT_EQ(expand<ReferenceEngine>(device, component, {all.back()}), expansion) << each.name;
    }
  }
}

// Long tables are broken into lines that begin below their keyword, so that its column shows.
TEST(TemplateEngines, AgreeOnTheColumnBehindAnyText) {
  const Device device("/examples/push_pull_buffer.ibs");
  const IBISComponent* const component = device.parsed.file.data().components[0].get();
  const Texts pieces = {"a",
                        " ",
                        "\t",
                        "\r",
                        "%%",
                        "%\r%",
                        "%rootdir%",
                        "%root\rdir%",
                        "%roo\ttdir%",
                        "%ibisdate\r%",
                        "%\ribisdate\r\r%",
                        "%rootdir\n# c\n%",
                        "%nothing\r\t%"};
  std::mt19937 dice(7);
  std::set<std::size_t> sizes;
  for (int turn = 0; turn < 300; ++turn) {
    std::string prefix;
    for (std::size_t i = dice() % 8; i > 0; --i) prefix += pieces[dice() % pieces.size()];
    const Texts templates = {"%file% out\n%foreachmodel%\n" + prefix +
                             "%pulldown%\n%endforeach%\n"};
    const Expansion expansion = expand<TemplateEngine>(device, component, templates);
    ASSERT_TRUE(expand<ReferenceEngine>(device, component, templates) == expansion)
        << shown(templates);
    sizes.insert(expansion.files.at("out").size());
  }
  EXPECT_GT(sizes.size(), 20U);
}

TEST(TemplateEngines, AgreeOnThousandsOfRandomTemplates) {
  constexpr std::uint32_t count = 5'000;
  const Device device;
  const IBISComponent* const component = device.parsed.file.data().components[0].get();
  std::size_t characters = 0;
  std::size_t errors = 0;
  for (std::uint32_t seed = 0; seed < count; ++seed) {
    TemplateMaker maker(seed);
    const Texts templates = {maker.make(), maker.make()};
    const IBISComponent* const given = seed % 4 == 0 ? nullptr : component;
    const Expansion expansion = expand<TemplateEngine>(device, given, templates);
    ASSERT_TRUE(expand<ReferenceEngine>(device, given, templates) == expansion) << shown(templates);
    for (const auto& [name, text] : expansion.files) characters += text.size();
    errors += expansion.errors.size();
  }
  // The templates say something, in the right and in the wrong way. Compilers differ in the order
  // in which the words of one expression are drawn, and so in the templates.
  EXPECT_GT(characters, 50 * count);
  EXPECT_GT(errors, std::size_t{count});
}

}  // namespace
}  // namespace ibis::testing
