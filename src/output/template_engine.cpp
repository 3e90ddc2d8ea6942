#include "output/template_engine.h"

#include <algorithm>

#include "host/messages.h"
#include "output/keyword_registry.h"

namespace ibis {
namespace {

constexpr std::size_t longestKeyword = 127;
constexpr std::int32_t tabWidth = 4;

// A comma at the very end adds no empty item.
void splitAtCommas(std::string_view text, KeywordArguments& items) {
  items.clear();
  do {
    const std::size_t end = std::min(text.find(','), text.size());
    items.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  } while (!text.empty());
}

// What lasts for the expansion of one text.
class Expansion {
 public:
  Expansion(OutputRun& run, TextBuffer& text) : run_(run), text_(text) {}

  // A byte above 0x7f is never consumed and ends the text as its NUL does.
  void run() {
    while (!abandoned_) {
      const char c = text_.read();
      if (static_cast<signed char>(c) <= 0) return;
      takeCharacter(c);
    }
  }

 private:
  bool gateOpen() const { return isActive() && run_.out() != nullptr && !skipLoop_; }
  bool parentActive() const { return inactiveParents_ == 0; }
  bool isActive() const { return active_ && parentActive(); }

  void takeCharacter(char c) {
    countCharacter(c);
    if (commentLine_) return;
    if (c == ' ' && !inKeyword_) {
      ++pendingSpaces_;
    } else if (c == '%') {
      takePercentSign();
    } else {
      takeText(c);
    }
  }

  void countCharacter(char c) {
    if (c == '\n') {
      commentLine_ = text_.peek() == '#';
      ++line_;
      column_ = 1;
    } else if (c == '\t') {
      column_ = (column_ - 1) / tabWidth * tabWidth + tabWidth + 1;
    } else {
      ++column_;
    }
  }

  void takeText(char c) {
    if (!inKeyword_) flushPendingSpaces();
    if (c == '\n') {
      takeLineEnd();
    } else if (inKeyword_) {
      if (keyword_.size() < longestKeyword) keyword_ += c;
    } else {
      newlineEaten_ = false;
      if (gateOpen()) run_.out()->write(c);
    }
  }

  void takeLineEnd() {
    if (inKeyword_) {
      run_.reportError(message::unterminatedKeyword, line_ - 1);
      abandoned_ = true;
      return;
    }
    if (gateOpen() && !newlineEaten_) run_.out()->write('\n');
    newlineEaten_ = false;
  }

  void flushPendingSpaces() {
    if (gateOpen()) run_.out()->writeBlanks(pendingSpaces_);
    pendingSpaces_ = 0;
  }

  void takePercentSign() {
    newlineEaten_ = false;
    inKeyword_ = !inKeyword_;
    if (inKeyword_) {
      keyword_.clear();
    } else if (keyword_.empty()) {
      if (gateOpen()) run_.out()->write('%');
    } else {
      takeKeyword();
    }
  }

  // A file-level value hides a loop object's of the same name; loops do not nest.
  void takeKeyword() {
    splitAtCommas(keyword_, arguments_);
    const std::string_view name = arguments_.front();
    if (takeFileValue(name)) return;
    if (inLoop_ && skipLoop_) {
      takeLoopEnd();  // nothing else counts in the body of an empty loop
      return;
    }
    if (inLoop_ && (takeLoopValue() || takeLoopCondition(name))) return;
    if (takeFileCondition(name)) return;
    if (inLoop_ ? takeLoopEnd() : takeLoopStart()) return;
    if (!takeConditionWord()) {
      run_.reportError(message::unknownTemplateKeyword, keyword_.c_str(), line_);
    }
  }

  KeywordPosition position() const {
    const auto width = static_cast<std::int32_t>(keyword_.size()) + 2;
    return {line_, std::max(column_ - width, 1), pendingSpaces_};
  }

  // Without an open file only the keyword that opens one is called.
  bool takeFileValue(std::string_view name) {
    const ValueHandler handler = valueKeyword(name);
    if (handler == nullptr) return false;
    const bool worksUnopened = equalIgnoringCase(keyword_, "file") ||
                               equalIgnoringCase(keyword_, "append") ||
                               equalIgnoringCase(keyword_, "include");
    if (isActive() && !skipLoop_ && (run_.out() != nullptr || worksUnopened)) {
      newlineEaten_ = handler(run_, run_.out(), position(), text_, arguments_);
      pendingSpaces_ = 0;
    }
    return true;
  }

  bool takeLoopValue() {
    const ForEachObject& object = items_[pass_];
    if (!object.value(keyword_, nullptr, position(), text_)) return false;
    if (isActive()) newlineEaten_ = object.value(keyword_, run_.out(), position(), text_);
    pendingSpaces_ = 0;
    return true;
  }

  bool takeLoopCondition(std::string_view name) {
    const ForEachObject& object = items_[pass_];
    if (name == "iffirst") {
      enterCondition(pass_ == 0);
    } else if (object.isCondition(name)) {
      enterCondition(object.evaluate(name, arguments_));
    } else {
      return false;
    }
    return true;
  }

  bool takeFileCondition(std::string_view name) {
    const ConditionHandler handler = conditionKeyword(name);
    if (handler == nullptr) return false;
    enterCondition(handler(run_, text_, arguments_));
    return true;
  }

  void enterCondition(bool holds) {
    conditions_.push_back(active_);
    if (!active_) ++inactiveParents_;
    active_ = holds;
    newlineEaten_ = true;
  }

  // The list is built whether or not anything is written.
  bool takeLoopStart() {
    const LoopFactory factory = loopKeyword(keyword_);
    if (factory == nullptr) return false;
    loopStart_ = {text_.position(), line_, column_};
    factory(run_, items_);
    newlineEaten_ = true;
    inLoop_ = true;
    skipLoop_ = items_.empty();
    pass_ = 0;
    return true;
  }

  bool takeLoopEnd() {
    if (!equalIgnoringCase(keyword_, "endforeach")) return false;
    if (pass_ + 1 < items_.size()) {
      ++pass_;
      text_.seek(loopStart_.position);
      line_ = loopStart_.line;
      column_ = loopStart_.column;
    } else {
      inLoop_ = false;
      skipLoop_ = false;
      items_.clear();
    }
    newlineEaten_ = true;
    pendingSpaces_ = 0;
    return true;
  }

  bool takeConditionWord() {
    if (equalIgnoringCase(keyword_, "else")) {
      active_ = !active_;
    } else if (equalIgnoringCase(keyword_, "endif")) {
      leaveCondition();
    } else {
      return false;
    }
    newlineEaten_ = true;
    return true;
  }

  void leaveCondition() {
    if (conditions_.empty()) {
      run_.reportError(message::endifWithoutTest, line_);
      return;
    }
    active_ = conditions_.back();
    conditions_.pop_back();
    if (!active_) --inactiveParents_;
  }

  struct LoopStart {
    std::int32_t position = 0;
    std::int32_t line = 1;
    std::int32_t column = 1;
  };

  OutputRun& run_;
  TextBuffer& text_;
  std::int32_t line_ = 1;
  std::int32_t column_ = 1;
  std::string keyword_;
  KeywordArguments arguments_;  // of the keyword just read, views into its text
  bool inKeyword_ = false;
  bool abandoned_ = false;
  std::int32_t pendingSpaces_ = 0;
  bool newlineEaten_ = false;
  bool commentLine_ = false;
  bool active_ = true;               // the innermost condition holds
  std::vector<bool> conditions_;     // active_ of the conditions around it
  std::size_t inactiveParents_ = 0;  // how many of those are false
  bool inLoop_ = false;
  bool skipLoop_ = false;
  LoopItems items_;
  std::size_t pass_ = 0;
  LoopStart loopStart_;
};

}  // namespace

bool TemplateEngine::expand(TextBuffer& text) {
  Expansion(*this, text).run();
  return true;
}

}  // namespace ibis
