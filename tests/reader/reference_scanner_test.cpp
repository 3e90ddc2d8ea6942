// Random texts, cut into records by the scanner and by a plain one that goes line by line and keeps
// copies of everything.

#include <cctype>
#include <random>
#include <tuple>

#include "harness/harness.h"
#include "reader/scanner.h"

namespace ibis::testing {
namespace {

/// Line, keyword id and text of one record.
using Line = std::tuple<int, int, std::string>;
using Lines = std::vector<Line>;

std::string lowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Without blanks and tabs around it.
std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t");
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

// Takes a text apart from its front, a character at a time.
class PlainScanner {
 public:
  explicit PlainScanner(const std::string& text) : rest_(text.substr(0, text.find('\0'))) {}

  Lines run() {
    for (int line = 1; !rest_.empty() && !isStopped_; ++line) takeLine(line);
    return lines_;
  }

 private:
  void takeLine(int line) {
    if (rest_.front() == comment_) {
      takeUntil('\n');
    } else if (rest_.front() != '[') {
      const std::string text = kept(takeUntil('\n'));
      if (!trimmed(text).empty()) lines_.emplace_back(line, keyword::dataLine, text);
    } else {
      rest_.erase(0, 1);
      takeKeyword(line, idOf(takeUntil(']')));
    }
  }

  void takeKeyword(int line, int id) {
    const std::string behind = takeUntil('\n');
    if (id == keyword::commentChar) {
      takeComment(trimmed(shortened(behind)));
    } else if (id != keyword::none) {
      lines_.emplace_back(line, id, kept(behind));
    }
  }

  void takeComment(const std::string& word) {
    const std::string allowed = "!\"#$%&'()*,:;<>?@\\^`{|}~";
    isStopped_ = word.empty() || allowed.find(word[0]) == allowed.npos ||
                 lowerCase(word.substr(1)) != "_char";
    if (!isStopped_) comment_ = word[0];
  }

  // All up to an end, which goes too.
  std::string takeUntil(char end) {
    std::string text;
    while (!rest_.empty() && rest_.front() != end) {
      text += rest_.front();
      rest_.erase(0, 1);
    }
    if (!rest_.empty()) rest_.erase(0, 1);
    return text;
  }

  static int idOf(std::string name) {
    for (char& c : name) c = c == '_' ? ' ' : c;
    for (const KeywordRow& row : keywordTable()) {
      if (lowerCase(std::string(row.name)) == lowerCase(name)) return row.id;
    }
    return keyword::none;
  }

  static std::string shortened(const std::string& text) {
    std::string out;
    for (const char c : text) {
      if (c != '\r') out += c;
    }
    return out.substr(0, 239);
  }

  std::string kept(const std::string& text) const {
    return shortened(text.substr(0, text.find(comment_)));
  }

  std::string rest_;
  Lines lines_;
  char comment_ = '|';
  bool isStopped_ = false;
};

std::string randomText(std::mt19937& dice) {
  const Texts pieces = {"[Component]",
                        "[ibis_ver]",
                        "[Model",
                        "]",
                        "[",
                        "[Model Data]",
                        "[End Model Data]",
                        "[Nothing]",
                        "[Comment Char]",
                        "$_char",
                        " #_CHAR",
                        "|",
                        "$",
                        "#",
                        "word",
                        " ",
                        "\t",
                        "\r",
                        "\n",
                        "\n",
                        "\n",
                        "\r\n",
                        "\xc3\xa9",
                        "[Pin]",
                        "[PIN_]",
                        std::string(130, 'x'),
                        std::string(240, 'y'),
                        "_char"};
  std::string text;
  for (auto count = dice() % 40; count > 0; --count) text += pieces[dice() % pieces.size()];
  if (dice() % 20 == 0) text.insert(dice() % (text.size() + 1), 1, '\0');
  return text;
}

TEST(Scanner, AgreesWithAPlainOneOnManyTexts) {
  std::mt19937 dice(3);
  for (int round = 0; round < 5000; ++round) {
    const std::string text = randomText(dice);
    Lines lines;
    const IBISScanResult scan = scanIBISText(text);
    for (const IBISRecord& record : scan.records) {
      lines.emplace_back(record.line, record.keyword, record.text());
    }
    ASSERT_EQ(lines, PlainScanner(text).run()) << ::testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace ibis::testing
