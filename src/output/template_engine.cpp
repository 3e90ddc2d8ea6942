#include "output/template_engine.h"

#include <algorithm>
#include <memory_resource>
#include <type_traits>

#include "host/diagnostics/messages.h"
#include "output/keyword_registry.h"

namespace ibis {
namespace {

constexpr std::size_t longestKeyword = 127;
constexpr std::int32_t tabWidth = 4;

// Room for all that is known of a text's keywords; it goes as a whole.
using Arena = std::pmr::monotonic_buffer_resource;

template <class Item>
Item* makeRoom(Arena& arena, std::size_t count) {
  static_assert(std::is_trivially_destructible_v<Item>);
  return static_cast<Item*>(arena.allocate(count * sizeof(Item), alignof(Item)));
}

// A comma at the very end adds no empty item.
KeywordArguments splitAtCommas(std::string_view text, Arena& arena) {
  auto* const items =
      makeRoom<IBISString>(arena, static_cast<std::size_t>(std::ranges::count(text, ',')) + 1);
  std::size_t count = 0;
  do {
    const std::size_t end = std::min(text.find(','), text.size());
    new (items + count++) IBISString(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  } while (!text.empty());
  return {items, count};
}

// A keyword of the text with all that can be known of it before it is met.
struct Keyword {
  // The text lives as long as the arena.
  Keyword(std::string_view text, Arena& arena) : arguments(splitAtCommas(text, arena)) {
    value = valueKeyword(name());
    condition = conditionKeyword(name());
    loop = loopKeyword(text);
    worksUnopened = equalIgnoringCase(text, "file") || equalIgnoringCase(text, "append") ||
                    equalIgnoringCase(text, "include");
  }

  std::string_view name() const { return arguments.front(); }

  KeywordArguments arguments;
  ValueHandler value = nullptr;
  ConditionHandler condition = nullptr;
  LoopFactory loop = nullptr;
  bool worksUnopened = false;  // is called without an open file, too
};

const Keyword* makeKeyword(std::string_view text, Arena& arena) {
  char* const copy = makeRoom<char>(arena, text.size());
  std::ranges::copy(text, copy);
  return new (makeRoom<Keyword>(arena, 1)) Keyword({copy, text.size()}, arena);
}

// What lasts for the expansion of one text.
class Expansion {
 public:
  Expansion(OutputRun& run, TextBuffer& text)
      : run_(run), text_(text), keywordAt_(static_cast<std::size_t>(text.size()) + 1) {}

  // A byte above 0x7f is never consumed and ends the text as its NUL does.
  void run() {
    while (!abandoned_) {
      takePlainText(text_.readPlain());
      const char c = text_.read();
      if (static_cast<signed char>(c) <= 0) return;
      takeCharacter(c);
    }
  }

 private:
  bool gateOpen() const { return isActive() && run_.out() != nullptr && !skipLoop_; }
  bool parentActive() const { return inactiveParents_ == 0; }
  bool isActive() const { return active_ && parentActive(); }

  // Most of a text is neither blank, line end nor percent sign and is taken in one piece.
  void takePlainText(std::string_view plain) {
    column_ += static_cast<std::int32_t>(plain.size());
    if (plain.empty() || commentLine_) return;
    if (inKeyword_) {
      keyword_ += plain.substr(0, longestKeyword - std::min(longestKeyword, keyword_.size()));
      return;
    }
    flushPendingSpaces();
    newlineEaten_ = false;
    if (gateOpen()) run_.out()->write(plain);
  }

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
      keywordStart_ = static_cast<std::size_t>(text_.position());
    } else if (keyword_.empty()) {
      if (gateOpen()) run_.out()->write('%');
    } else {
      takeKeyword(currentKeyword());
    }
  }

  // A loop meets its keywords again on every pass.
  const Keyword& currentKeyword() {
    const Keyword*& known = keywordAt_[keywordStart_];
    if (known == nullptr) known = makeKeyword(keyword_, keywords_);
    return *known;
  }

  // A file-level value hides a loop object's of the same name; loops do not nest.
  void takeKeyword(const Keyword& keyword) {
    if (takeFileValue(keyword)) return;
    if (inLoop_ && skipLoop_) {
      takeLoopEnd();  // nothing else counts in the body of an empty loop
      return;
    }
    if (inLoop_ && (takeLoopValue() || takeLoopCondition(keyword))) return;
    if (takeFileCondition(keyword)) return;
    if (inLoop_ ? takeLoopEnd() : takeLoopStart(keyword)) return;
    if (!takeConditionWord()) {
      run_.reportError(message::unknownTemplateKeyword, keyword_.c_str(), line_);
    }
  }

  KeywordPosition position() const {
    const auto width = static_cast<std::int32_t>(keyword_.size()) + 2;
    return {line_, std::max(column_ - width, 1), pendingSpaces_};
  }

  // Without an open file only the keyword that opens one is called.
  bool takeFileValue(const Keyword& keyword) {
    if (keyword.value == nullptr) return false;
    if (isActive() && !skipLoop_ && (run_.out() != nullptr || keyword.worksUnopened)) {
      newlineEaten_ = keyword.value(run_, run_.out(), position(), text_, keyword.arguments);
      pendingSpaces_ = 0;
    }
    return true;
  }

  bool takeLoopValue() {
    const ForEachObject& object = items_.current();
    if (!object.value(keyword_, nullptr, position(), text_)) return false;
    if (isActive()) newlineEaten_ = object.value(keyword_, run_.out(), position(), text_);
    pendingSpaces_ = 0;
    return true;
  }

  bool takeLoopCondition(const Keyword& keyword) {
    const ForEachObject& object = items_.current();
    if (keyword.name() == "iffirst") {
      enterCondition(items_.isAtFirst());
    } else if (object.isCondition(keyword.name())) {
      enterCondition(object.evaluate(keyword.name(), keyword.arguments));
    } else {
      return false;
    }
    return true;
  }

  bool takeFileCondition(const Keyword& keyword) {
    if (keyword.condition == nullptr) return false;
    enterCondition(keyword.condition(run_, text_, keyword.arguments));
    return true;
  }

  void enterCondition(bool holds) {
    conditions_.push_back(active_);
    if (!active_) ++inactiveParents_;
    active_ = holds;
    newlineEaten_ = true;
  }

  // The list is built whether or not anything is written.
  bool takeLoopStart(const Keyword& keyword) {
    if (keyword.loop == nullptr) return false;
    loopStart_ = {text_.position(), line_, column_};
    keyword.loop(run_, items_);
    newlineEaten_ = true;
    inLoop_ = true;
    skipLoop_ = items_.empty();
    items_.restart();
    return true;
  }

  bool takeLoopEnd() {
    if (!equalIgnoringCase(keyword_, "endforeach")) return false;
    if (items_.advance()) {
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
  std::size_t keywordStart_ = 0;           // behind its opening percent sign
  std::vector<const Keyword*> keywordAt_;  // by start; null for one that was not met yet
  Arena keywords_;
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
  LoopStart loopStart_;
};

}  // namespace

bool TemplateEngine::expand(TextBuffer& text) {
  Expansion(*this, text).run();
  return true;
}

}  // namespace ibis
