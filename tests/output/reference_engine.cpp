#include "output/reference_engine.h"

#include <algorithm>
#include <optional>

#include "host/diagnostics/messages.h"
#include "output/keyword_registry.h"

namespace ibis::testing {
namespace {

constexpr std::size_t longestKeyword = 127;
constexpr std::int32_t tabWidth = 4;

// What a keyword's text says by itself.
struct Keyword {
  explicit Keyword(const std::string& given) : text(given) {
    // A comma at the very end adds no empty item.
    for (std::size_t begin = 0; begin == 0 || begin < text.size();) {
      const std::size_t end = std::min(text.find(',', begin), text.size());
      items.emplace_back(std::string_view(text).substr(begin, end - begin));
      begin = end + 1;
    }
  }

  std::string_view name() const { return items.front(); }
  bool is(std::string_view word) const { return equalIgnoringCase(text, word); }

  std::string text;
  std::vector<IBISString> items;
};

class Walk {
 public:
  Walk(OutputRun& run, TextBuffer& text) : run_(run), text_(text) {}

  // A byte above 0x7f is never consumed and ends the text as its NUL does.
  void run() {
    while (!abandoned_) {
      const char c = text_.read();
      if (static_cast<signed char>(c) <= 0) return;
      count(c);
      if (!inComment_) take(c);
    }
  }

 private:
  struct Condition {
    bool wasActive;
  };

  bool isActive() const {
    return active_ && std::ranges::all_of(conditions_, &Condition::wasActive);
  }
  bool writes() const { return isActive() && run_.out() != nullptr && !skipsLoop_; }

  void count(char c) {
    if (c == '\n') {
      inComment_ = text_.peek() == '#';
      ++line_;
      column_ = 1;
    } else if (c == '\t') {
      column_ = (column_ - 1) / tabWidth * tabWidth + tabWidth + 1;
    } else {
      ++column_;
    }
  }

  void take(char c) {
    if (c == '%') {
      takePercentSign();
    } else if (keyword_) {
      takeIntoKeyword(c);
    } else if (c == ' ') {
      ++heldBlanks_;
    } else {
      writeHeldBlanks();
      if (writes() && !(c == '\n' && dropsLineEnd_)) run_.out()->write(c);
      dropsLineEnd_ = false;
    }
  }

  void takeIntoKeyword(char c) {
    if (c == '\n') {
      run_.errors().error(message::unterminatedKeyword, line_ - 1);
      abandoned_ = true;
    } else if (keyword_->size() < longestKeyword) {
      *keyword_ += c;
    }
  }

  void writeHeldBlanks() {
    if (writes()) run_.out()->writeBlanks(heldBlanks_);
    heldBlanks_ = 0;
  }

  void takePercentSign() {
    dropsLineEnd_ = false;
    if (!keyword_) {
      keyword_.emplace();
      return;
    }
    const std::string text = *keyword_;
    keyword_.reset();
    if (!text.empty()) {
      takeKeyword(Keyword(text));
    } else if (writes()) {
      run_.out()->write('%');
    }
  }

  void takeKeyword(const Keyword& keyword) {
    if (const ValueHandler value = valueKeyword(keyword.name())) {
      return takeFileValue(keyword, value);
    }
    if (skipsLoop_) {
      if (keyword.is("endforeach")) endLoop();
      return;
    }
    if (inLoop_ && takeLoopWord(keyword)) return;
    if (const ConditionHandler condition = conditionKeyword(keyword.name())) {
      return beginCondition(condition(run_, text_, keyword.items));
    }
    if (inLoop_ && keyword.is("endforeach")) return endLoop();
    const LoopFactory loop = loopKeyword(keyword.text);
    if (!inLoop_ && loop != nullptr) return beginLoop(loop);
    takeConditionWord(keyword);
  }

  KeywordPosition positionOf(const Keyword& keyword) const {
    const auto width = static_cast<std::int32_t>(keyword.text.size()) + 2;
    return {.line = line_, .column = std::max(column_ - width, 1), .pendingSpaces = heldBlanks_};
  }

  void takeFileValue(const Keyword& keyword, ValueHandler value) {
    const bool opens = keyword.is("file") || keyword.is("append") || keyword.is("include");
    if (!isActive() || skipsLoop_ || (run_.out() == nullptr && !opens)) return;
    dropsLineEnd_ = value(run_, run_.out(), positionOf(keyword), text_, keyword.items);
    heldBlanks_ = 0;
  }

  bool takeLoopWord(const Keyword& keyword) {
    const ForEachObject& object = items_.current();
    if (object.value(keyword.text, nullptr, positionOf(keyword), text_)) {
      if (isActive()) {
        dropsLineEnd_ = object.value(keyword.text, run_.out(), positionOf(keyword), text_);
      }
      heldBlanks_ = 0;
    } else if (keyword.name() == "iffirst") {
      beginCondition(items_.isAtFirst());
    } else if (object.isCondition(keyword.name())) {
      beginCondition(object.evaluate(keyword.name(), keyword.items));
    } else {
      return false;
    }
    return true;
  }

  void beginCondition(bool holds) {
    conditions_.push_back({active_});
    active_ = holds;
    dropsLineEnd_ = true;
  }

  void takeConditionWord(const Keyword& keyword) {
    if (keyword.is("else")) {
      active_ = !active_;
    } else if (keyword.is("endif")) {
      endCondition();
    } else {
      run_.errors().error(message::unknownTemplateKeyword, keyword.text.c_str(), line_);
      return;
    }
    dropsLineEnd_ = true;
  }

  void endCondition() {
    if (conditions_.empty()) {
      run_.errors().error(message::endifWithoutTest, line_);
      return;
    }
    active_ = conditions_.back().wasActive;
    conditions_.pop_back();
  }

  void beginLoop(LoopFactory loop) {
    loopPosition_ = text_.position();
    loopLine_ = line_;
    loopColumn_ = column_;
    loop(run_, items_);
    items_.restart();
    inLoop_ = true;
    skipsLoop_ = items_.empty();
    dropsLineEnd_ = true;
  }

  void endLoop() {
    if (items_.advance()) {
      text_.seek(loopPosition_);
      line_ = loopLine_;
      column_ = loopColumn_;
    } else {
      inLoop_ = false;
      skipsLoop_ = false;
      items_.clear();
    }
    dropsLineEnd_ = true;
    heldBlanks_ = 0;
  }

  OutputRun& run_;
  TextBuffer& text_;
  std::int32_t line_ = 1;
  std::int32_t column_ = 1;
  std::optional<std::string> keyword_;  // what was read of the one that is open
  bool inComment_ = false;
  bool abandoned_ = false;
  std::int32_t heldBlanks_ = 0;
  bool dropsLineEnd_ = false;
  bool active_ = true;
  std::vector<Condition> conditions_;
  bool inLoop_ = false;
  bool skipsLoop_ = false;
  LoopItems items_;
  std::int32_t loopPosition_ = 0;
  std::int32_t loopLine_ = 1;
  std::int32_t loopColumn_ = 1;
};

}  // namespace

void ReferenceEngine::expand(TextBuffer& text) { Walk(*this, text).run(); }

}  // namespace ibis::testing
