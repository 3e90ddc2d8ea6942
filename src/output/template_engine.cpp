#include "output/template_engine.h"

#include <algorithm>

#include "host/diagnostics/messages.h"
#include "output/compiled_template.h"

namespace ibis {
namespace {

constexpr std::int32_t tabWidth = 4;

std::int32_t behindTab(std::int32_t column) {
  return (column - 1) / tabWidth * tabWidth + tabWidth + 1;
}

// The state of the expansion of one text.
class Expansion {
 public:
  Expansion(OutputRun& run, TextBuffer& text)
      : run_(run), text_(text), pieces_(text.text()), next_(pieces_.pieceAt(text.position())) {}

  void run() {
    while (!ended_) {
      piece_ = pieces_.piece(next_++);
      takePiece();
    }
  }

 private:
  bool gateOpen() const { return isActive() && run_.out() != nullptr && !skipLoop_; }
  bool parentActive() const { return inactiveParents_ == 0; }
  bool isActive() const { return active_ && parentActive(); }

  void takePiece() {
    switch (piece_.kind) {
      case PieceKind::text:
        column_ += piece_.count;
        return takeText();
      case PieceKind::blanks:
        column_ += piece_.count;
        pendingSpaces_ += piece_.count;
        return;
      case PieceKind::tab:
        column_ = behindTab(column_);
        return takeText();
      case PieceKind::lineEnd:
        startLine();
        return takeLineEnd();
      case PieceKind::commentLine:
        return startLine();
      case PieceKind::percent:
        advanceColumn();
        newlineEaten_ = false;
        if (gateOpen()) run_.out()->write('%');
        return;
      case PieceKind::keyword:
        advanceColumn();
        newlineEaten_ = false;
        return takeKeyword(*piece_.keyword);
      case PieceKind::unterminated:
        run_.errors().error(message::unterminatedKeyword, line_ + piece_.count - 1);
        ended_ = true;
        return;
      case PieceKind::jump:
        next_ = static_cast<std::size_t>(piece_.count);
        return;
      case PieceKind::end:
        ended_ = true;
        return;
    }
  }

  void startLine() {
    ++line_;
    column_ = 1;
  }

  void advanceColumn() {
    column_ += piece_.count;
    if (piece_.count != 0) return;
    for (const char c : piece_.text) {
      if (c != '\r') column_ = c == '\t' ? behindTab(column_) : column_ + 1;
    }
  }

  void takeText() {
    flushPendingSpaces();
    newlineEaten_ = false;
    if (gateOpen()) run_.out()->write(piece_.text);
  }

  void takeLineEnd() {
    flushPendingSpaces();
    if (gateOpen() && !newlineEaten_) run_.out()->write('\n');
    newlineEaten_ = false;
  }

  void flushPendingSpaces() {
    if (pendingSpaces_ == 0) return;
    if (gateOpen()) run_.out()->writeBlanks(pendingSpaces_);
    pendingSpaces_ = 0;
  }

  // A value outside loops hides a loop object's of the same name; loops do not nest.
  void takeKeyword(TemplateKeyword& keyword) {
    if (keyword.value != nullptr) return takeFileValue(keyword);
    if (inLoop_ && skipLoop_) {
      if (keyword.endsLoop) takeLoopEnd();  // all else in an empty loop is skipped
      return;
    }
    if (inLoop_ && takeLoopWord(keyword)) return;
    if (keyword.condition != nullptr) {
      return enterCondition(
          callHandler([&] { return keyword.condition(run_, text_, keyword.arguments); }));
    }
    if (inLoop_ && keyword.endsLoop) return takeLoopEnd();
    if (!inLoop_ && keyword.loop != nullptr) return takeLoopStart(keyword);
    if (!takeConditionWord(keyword)) {
      run_.errors().error(message::unknownTemplateKeyword, std::string(keyword.text).c_str(),
                          line_);
    }
  }

  KeywordPosition position(const TemplateKeyword& keyword) const {
    const auto width = static_cast<std::int32_t>(keyword.text.size()) + 2;
    return {.line = line_, .column = std::max(column_ - width, 1), .pendingSpaces = pendingSpaces_};
  }

  // A handler may read on in the text; the template goes on where it stopped.
  template <class Call>
  bool callHandler(Call call) {
    text_.seek(piece_.end);
    const bool result = call();
    if (text_.position() != piece_.end) next_ = pieces_.pieceAt(text_.position());
    return result;
  }

  // Without an open file only the keyword that opens one is called.
  void takeFileValue(const TemplateKeyword& keyword) {
    const bool isCalled =
        isActive() && !skipLoop_ && (run_.out() != nullptr || keyword.worksUnopened);
    if (!isCalled) return;
    newlineEaten_ = callHandler([&] {
      return keyword.value(run_, run_.out(), position(keyword), text_, keyword.arguments);
    });
    pendingSpaces_ = 0;
  }

  bool takeLoopWord(TemplateKeyword& keyword) {
    const ForEachObject& object = items_.current();
    if (keyword.loopKind != object.kind()) learn(keyword, object);
    const LoopWord& word = keyword.loopWord;
    if (word.write != nullptr) {
      if (isActive()) takeLoopValue(keyword, object);
      pendingSpaces_ = 0;
    } else if (keyword.isFirst) {
      enterCondition(items_.isAtFirst());
    } else if (word.holds != nullptr) {
      enterCondition(word.holds(word.row, object, keyword.arguments));
    } else {
      return false;
    }
    return true;
  }

  // A value is known by the whole text of its keyword, a condition by its name.
  static void learn(TemplateKeyword& keyword, const ForEachObject& object) {
    const LoopWord value = object.word(keyword.text);
    keyword.loopWord = value.write != nullptr ? value : object.word(keyword.name());
    if (value.write == nullptr) keyword.loopWord.write = nullptr;  // a name alone is not a value
    keyword.loopKind = object.kind();
  }

  // Without an open file a known value writes nothing and drops the line end.
  void takeLoopValue(const TemplateKeyword& keyword, const ForEachObject& object) {
    newlineEaten_ = run_.out() == nullptr;
    if (newlineEaten_) return;
    keyword.loopWord.write(keyword.loopWord.row, object, *run_.out(), position(keyword));
  }

  void enterCondition(bool holds) {
    conditions_.push_back(active_);
    if (!active_) ++inactiveParents_;
    active_ = holds;
    newlineEaten_ = true;
  }

  // Builds the list even if nothing is written.
  void takeLoopStart(const TemplateKeyword& keyword) {
    loopStart_ = {.piece = next_, .line = line_, .column = column_};
    keyword.loop(run_, items_);
    newlineEaten_ = true;
    inLoop_ = true;
    skipLoop_ = items_.empty();
    items_.restart();
  }

  void takeLoopEnd() {
    if (items_.advance()) {
      next_ = loopStart_.piece;
      line_ = loopStart_.line;
      column_ = loopStart_.column;
    } else {
      inLoop_ = false;
      skipLoop_ = false;
      items_.clear();
    }
    newlineEaten_ = true;
    pendingSpaces_ = 0;
  }

  bool takeConditionWord(const TemplateKeyword& keyword) {
    if (!keyword.isElse && !keyword.isEndif) return false;
    if (keyword.isElse) {
      active_ = !active_;
    } else {
      leaveCondition();
    }
    newlineEaten_ = true;
    return true;
  }

  void leaveCondition() {
    if (conditions_.empty()) {
      run_.errors().error(message::endifWithoutTest, line_);
      return;
    }
    active_ = conditions_.back();
    conditions_.pop_back();
    if (!active_) --inactiveParents_;
  }

  struct LoopStart {
    std::size_t piece = 0;
    std::int32_t line = 1;
    std::int32_t column = 1;
  };

  OutputRun& run_;
  TextBuffer& text_;
  CompiledTemplate pieces_;
  TemplatePiece piece_;
  std::size_t next_;  // the piece after piece_
  bool ended_ = false;
  std::int32_t line_ = 1;
  std::int32_t column_ = 1;
  std::int32_t pendingSpaces_ = 0;
  bool newlineEaten_ = false;
  bool active_ = true;               // whether the innermost condition holds
  std::vector<bool> conditions_;     // active_ of the conditions around it
  std::size_t inactiveParents_ = 0;  // how many of those are false
  bool inLoop_ = false;
  bool skipLoop_ = false;
  LoopItems items_;
  LoopStart loopStart_;
};

}  // namespace

bool TemplateEngine::expand(TextBuffer& text) {
  Expansion(*this, text).run();
  return true;
}

}  // namespace ibis
