#include "ibis/document.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "host/diagnostics/messages.h"
#include "library/selections.h"
#include "model/numbers/float_environment.h"
#include "reader/file/parser.h"
#include "reader/text/text_buffer.h"

namespace ibis {

// The scanner stays, since it owns the lines that it rewrote, and records point into them.
struct Document::Content {
  TextBuffer text;
  std::optional<IBISScanner> scanner;
  IBISFile file;
  std::vector<Diagnostic> diagnostics;

  void readRecords(const ReadOptions& options);
  void sortDiagnostics();
};

void Document::Content::readRecords(const ReadOptions& options) {
  for (const std::string& selection : options.selections) file.addUserModelSelector(selection);
  scanner.emplace(text.text(), IBISScanner::usualPiece, options.newerVersions);
  parseFile(file, *scanner, options);
  scanner->dropPiece();
  if (file.hasErrors()) return;
  chooseByName(file.data());
  postParse(file, {}, {});
}

void Document::Content::sortDiagnostics() {
  for (const auto* list : {&file.data().errors, &file.data().warnings}) {
    diagnostics.insert(diagnostics.end(), list->begin(), list->end());
  }
  std::ranges::stable_sort(diagnostics, {}, &Diagnostic::line);
}

Document::Document(std::unique_ptr<Content> content) : content_(std::move(content)) {}
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&&) noexcept = default;
Document::~Document() = default;

const IBISFileData& Document::file() const { return content_->file.data(); }
const std::vector<Diagnostic>& Document::diagnostics() const { return content_->diagnostics; }
bool Document::hasErrors() const { return content_->file.hasErrors(); }

Document read(const std::string& path, const ReadOptions& options) {
  const FloatEnvironment own;
  auto content = std::make_unique<Document::Content>();
  if (content->text.loadFile(path)) {
    std::error_code fault;
    const auto canonical = std::filesystem::weakly_canonical(path, fault);
    content->file.setFilePath(fault ? path : canonical.string());
    content->readRecords(options);
  } else {
    content->file.error(message::cannotOpenSource, path.c_str());
  }
  content->sortDiagnostics();
  return Document(std::move(content));
}

Document readText(std::string_view text, const ReadOptions& options) {
  const FloatEnvironment own;
  auto content = std::make_unique<Document::Content>();
  content->text.assign(text);
  content->text.convertLineEnds();
  content->readRecords(options);
  content->sortDiagnostics();
  return Document(std::move(content));
}

}  // namespace ibis
