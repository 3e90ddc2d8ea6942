// The rules about keywords: which stand where.

#include <algorithm>
#include <map>

#include "checks/families.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

std::string withBrackets(std::string_view name) { return "[" + std::string(name) + "]"; }

std::string describe(const View& view, const Section& part) {
  if (part.kind == section::header) return "the header";
  const Block& head = view.block(part.firstBlock);
  std::string text = withBrackets(head.keyword->name);
  if (!part.name.empty()) text.append(" '").append(part.name).append("'");
  return text;
}

class KeywordChecker {
 public:
  KeywordChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {}

  void check() {
    const Syntax& syntax = view_.syntax;
    for (const Section& part : syntax.sections()) {
      if (part.isAfterEnd) break;
      seen_.clear();
      for (const Block& block : syntax.blocksOf(part)) checkBlock(part, block);
    }
    checkEnd();
    checkComments();
    const std::uint32_t lines = syntax.facts().textBeforeKeyword;
    if (lines > 0) {
      findings_.add(Rule::syntaxTextBeforeKeyword,
                    view_.spotOf(syntax.lines().front(), Spot::nowhere), {countOf(lines, "line")});
    }
  }

 private:
  void checkBlock(const Section& part, const Block& block) {
    checkForm(block);
    if (block.keyword == nullptr || block.isMisspelled) {
      tellUnknown(block);
      return;
    }
    checkVersion(block);
    if (!checkPlace(part, block)) return;
    checkCount(part, block);
    checkStray(block);
  }

  void checkForm(const Block& block) {
    const Spot spot = view_.spotOf(block);
    if (block.isUnclosed) {
      const SourceLine& line = view_.syntax.headOf(block);
      const std::size_t end = line.text.find_last_not_of(" \t\r") + 1;
      const auto begin = static_cast<std::size_t>(block.column) - 1;
      findings_.add(Rule::syntaxUnclosedKeyword, view_.spotOf(line, view_.indexOf(block)),
                    {std::string(line.text.substr(begin, end - begin))});
    }
    if (block.isIndented) {
      findings_.add(Rule::syntaxIndentedKeyword, spot, {std::string(block.name)});
    }
    if (block.hasBlankInBrackets) {
      const SourceLine& line = view_.syntax.headOf(block);
      const std::size_t open = static_cast<std::size_t>(block.column);
      const std::string inside(line.text.substr(open, line.text.find(']') - open));
      findings_.add(Rule::syntaxBlankInBrackets, spot, {inside, std::string(block.name)});
    }
  }

  void tellUnknown(const Block& block) {
    std::string more = block.isMisspelled
                           ? "; did you mean " + withBrackets(block.keyword->name) + "?"
                           : std::string();
    if (block.lineCount > 0) {
      more.append(more.empty() ? "; its " : " Its ").append(countOf(block.lineCount, "line"));
      more.append(block.lineCount == 1 ? " is " : " are ").append(fate(block));
    }
    findings_.add(Rule::syntaxUnknownKeyword, view_.spotOf(block), {std::string(block.name), more});
  }

  // A load passes over the keyword alone: its lines go to the keyword above.
  std::string fate(const Block& block) const {
    const std::uint32_t index = view_.indexOf(block);
    if (index == 0) return "not read";
    const Block& above = view_.block(index - 1);
    const bool takes = above.keyword != nullptr && above.keyword->content != Content::nothing;
    return takes ? "read as lines of " + withBrackets(above.keyword->name) : "not read";
  }

  void checkVersion(const Block& block) {
    const int first = versionNumber(block.keyword->version);
    if (view_.version == 0 || first <= view_.version) return;
    const std::string version =
        std::to_string(view_.version / 10) + '.' + std::to_string(view_.version % 10);
    findings_.add(Rule::syntaxKeywordNewer, view_.spotOf(block),
                  {std::string(block.keyword->name), std::string(block.keyword->version), version});
  }

  // Whether the keyword stands where it may.
  bool checkPlace(const Section& part, const Block& block) {
    if ((block.keyword->places & part.kind) != 0) return true;
    if (part.kind == section::file || part.kind == section::circuit ||
        part.kind == section::board) {
      return false;
    }
    if (block.keyword->places == section::header) {
      findings_.add(Rule::headerOutOfPlace, view_.spotOf(block),
                    {std::string(block.keyword->name)});
      return false;
    }
    findings_.add(Rule::syntaxKeywordMisplaced, view_.spotOf(block),
                  {std::string(block.keyword->name),
                   std::string(sectionName(block.keyword->places)), describe(view_, part)});
    return false;
  }

  void checkCount(const Section& part, const Block& block) {
    if (block.keyword->count == Count::multiple) return;
    const auto [first, isFirst] = seen_.try_emplace(block.keyword, &block);
    if (isFirst) return;
    const std::int32_t line = view_.syntax.headOf(*first->second).number;
    const bool isHeader = part.kind == section::header;
    Finding& told = isHeader ? findings_.add(Rule::headerDuplicate, view_.spotOf(block),
                                             {std::string(block.keyword->name)})
                             : findings_.add(Rule::syntaxDuplicateKeyword, view_.spotOf(block),
                                             {std::string(block.keyword->name),
                                              describe(view_, part), std::string(outcome(block))});
    addNote(told, line, "the first one is here");
  }

  // What a load makes of a keyword that it reads twice.
  static std::string_view outcome(const Block& block) {
    const StandardKeyword& keyword = *block.keyword;
    if ((keyword.places & (section::model | section::component)) == 0) return "";
    if (keyword.content == Content::table || keyword.name == "Pin") {
      return "; a load joins the rows and drops those that break their order";
    }
    const bool isValue = keyword.content == Content::nothing || keyword.name == "Package";
    return isValue ? "; a load takes the later one" : "";
  }

  void checkStray(const Block& block) {
    if (block.keyword->content != Content::nothing || block.lineCount == 0) return;
    const SourceLine& line = view_.syntax.linesOf(block).front();
    Finding& told =
        findings_.add(Rule::syntaxStrayText, view_.spotOf(line, view_.indexOf(block)),
                      {std::string(line.text.substr(0, line.text.find_last_not_of(" \t\r") + 1)),
                       std::string(block.keyword->name), "lines"});
    told.furtherRows = block.lineCount - 1;
  }

  void checkEnd() {
    const Syntax& syntax = view_.syntax;
    if (!syntax.facts().hasEnd) return tellMissingEnd();
    const Block& end = view_.block(syntax.facts().endBlock);
    const std::size_t behind = syntax.lines().size() - end.head - 1;
    if (behind == 0) return;
    const SourceLine& line = syntax.lines()[end.head + 1];
    const std::string_view text = line.text;
    Spot spot = view_.spotOf(line, Spot::nowhere);
    const std::size_t first = text.find_first_not_of(" \t");
    const std::size_t last = text.find_last_not_of(" \t\r");
    Finding& told = findings_.add(
        Rule::syntaxTextAfterEnd, spot,
        {countOf(behind, "line"), std::to_string(syntax.headOf(end).number),
         behind == 1 ? "is" : "are", std::string(text.substr(first, last - first + 1))});
    if (behind == 1 && text.find_first_not_of("\x1a \t\r") == text.npos) {
      told.diagnostic.severity = Severity::note;
    }
  }

  void tellMissingEnd() {
    const Syntax& syntax = view_.syntax;
    const SourceLine& last = syntax.lines().back();
    findings_.add(Rule::syntaxMissingEnd, view_.spotOf(last, Spot::nowhere),
                  {std::to_string(last.number), view_.nameOf(syntax.blocks().back())});
  }

  void checkComments() {
    for (const CommentChange& change : view_.syntax.commentChanges()) {
      const SourceLine& line = view_.syntax.lines()[change.line];
      const std::string_view rest = line.whole.substr(line.whole.find(']') + 1);
      const std::size_t first = rest.find_first_not_of(" \t");
      const std::size_t last = rest.find_last_not_of(" \t") + 1;
      const std::string text(first == rest.npos ? "" : rest.substr(first, last - first));
      Finding& told = findings_.add(
          Rule::syntaxCommentChar, view_.spotOf(line, Spot::nowhere),
          {text, change.isValid ? "comments begin with '" + std::string(1, change.sign) + "' here"
                                : "a load reads nothing behind it (expected '|_char')"});
      if (!change.isValid) told.diagnostic.severity = Severity::error;
      if (change.isValid) told.diagnostic.notes.clear();
    }
  }

  const View& view_;
  Findings& findings_;
  std::map<const StandardKeyword*, const Block*> seen_;
};

}  // namespace

void checkKeywords(const View& view, Findings& findings) { KeywordChecker(view, findings).check(); }

}  // namespace ibis::checks
