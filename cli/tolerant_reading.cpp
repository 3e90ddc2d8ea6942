#include "tolerant_reading.h"

#include <algorithm>
#include <set>
#include <utility>

#include "advice.h"
#include "input_text.h"
#include "messages.h"
#include "reader/text/text_buffer.h"
#include "source_fault.h"

namespace ibis::cli {
namespace {

// The ids of a load's rows about what was read and is used.
constexpr const char* harmless[] = {
    ibis::message::pointsRemoved,       ibis::message::vinlDefault,
    ibis::message::vinhDefault,         ibis::message::vinlDefaultEcl,
    ibis::message::vinhDefaultEcl,      ibis::message::hysteresisNotSupported,
    ibis::message::diffPinModelsDiffer, ibis::message::waveformsEstimated,
};

bool isOf(const Diagnostic& diagnostic, const char* format) {
  const MessageRow* row = findMessage(format);
  return row != nullptr && diagnostic.id == row->id.view();
}

bool isEmpty(const IBISFileData& file) {
  const auto isFromFile = [](const auto& model) { return model->lineNumber > 0; };
  return file.components.empty() && file.packageModels.empty() && file.modelSelectors.empty() &&
         std::ranges::none_of(file.models, isFromFile);
}

std::string_view textOf(const std::string& source, TextBuffer& buffer) {
  buffer.loadFile(source);
  return buffer.text();
}

}  // namespace

bool tellsOfLeftOut(const Diagnostic& diagnostic) {
  return std::ranges::none_of(harmless,
                              [&](const char* format) { return isOf(diagnostic, format); });
}

void removeRepeats(std::vector<Diagnostic>& list) {
  std::set<std::pair<std::int32_t, std::string>> told;
  std::erase_if(list,
                [&](const Diagnostic& each) { return !told.emplace(each.line, each.text).second; });
}

TolerantReading readTolerantly(const std::string& source) {
  TolerantReading reading;
  const ReadOptions options{.newerVersions = true, .keepGoing = true};
  InputText input = readInputText(source);
  if (input.fault) {
    reading.errors.push_back(std::move(*input.fault));
    return reading;
  }
  const std::shared_ptr<const std::string> text = std::move(input.text);
  TextBuffer buffer;
  Document document = text ? readText(*text, options) : read(source, options);
  for (const Diagnostic& diagnostic : document.diagnostics()) {
    if (isOf(diagnostic, ibis::message::cannotOpenSource)) {
      reading.errors.push_back(reasonUnread(source));
      return reading;
    }
    if (tellsOfLeftOut(diagnostic)) reading.leftOut.push_back(diagnostic);
  }
  removeRepeats(reading.leftOut);
  const bool nothing = isEmpty(document.file());
  if (nothing || document.file().version == 0) {
    Diagnostic fault = tell(nothing ? Severity::error : Severity::warning,
                            nothing ? message::nothingToList : message::noVersion);
    adviseOnNothing(fault, text ? std::string_view(*text) : textOf(source, buffer));
    auto& list = nothing ? reading.errors : reading.leftOut;
    list.insert(list.begin(), std::move(fault));
  }
  reading.document = std::move(document);
  return reading;
}

Refusals::Refusals(const IBISFileData& file, const std::vector<Diagnostic>& leftOut)
    : leftOut_(leftOut) {
  for (const auto& model : file.models) begins_.push_back(model->lineNumber);
  for (const auto& package : file.packageModels) begins_.push_back(package->line);
  std::ranges::sort(begins_);
}

std::vector<Diagnostic> Refusals::against(const IBISModel& model) const {
  std::vector<Diagnostic> reasons;
  if (model.isSound) return reasons;
  const auto next = std::ranges::upper_bound(begins_, model.lineNumber);
  auto each = std::ranges::lower_bound(leftOut_, model.lineNumber, {}, &Diagnostic::line);
  for (; each != leftOut_.end() && (next == begins_.end() || each->line < *next); ++each) {
    const bool isOfModels = isOf(*each, ibis::message::modelTypeNotSupported) ||
                            isOf(*each, ibis::message::modelKeywordNotSupported);
    if (isOfModels || each->line == model.lineNumber) reasons.push_back(*each);
  }
  return reasons;
}

}  // namespace ibis::cli
