#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/api.h"
#include "ibis/diagnostic.h"
#include "ibis/file.h"
#include "ibis/read_options.h"

namespace ibis {

/// A file that was read, with all faults that were found in it.
///
/// It owns the text and every record. They live as long as the document, and a document that is
/// moved leaves them where they are. Many threads may read documents at once. One document belongs
/// to one thread at a time, or to many that only look at it.
class IBIS_API Document {
 public:
  Document(Document&&) noexcept;
  Document& operator=(Document&&) noexcept;
  ~Document();

  /// The records, with the model of each pin resolved and references and input thresholds
  /// completed.
  const IBISFileData& file() const;

  /// All faults in the order of their lines; those without a line come first.
  const std::vector<Diagnostic>& diagnostics() const;

  /// Whether a diagnostic is an error; the records may then be incomplete.
  bool hasErrors() const;

 private:
  struct Content;
  explicit Document(std::unique_ptr<Content> content);
  friend IBIS_API Document read(const std::string& path, const ReadOptions& options);
  friend IBIS_API Document readText(std::string_view text, const ReadOptions& options);

  std::unique_ptr<Content> content_;
};

/// Reads a file; the document of one that cannot be read has an error and no components.
///
/// Nothing in a file makes it throw. It raises std::bad_alloc when memory runs out.
IBIS_API Document read(const std::string& path, const ReadOptions& options = {});

/// Reads a copy of a text as read() reads a file's.
IBIS_API Document readText(std::string_view text, const ReadOptions& options = {});

/// A diagnostic's text as a simulator's load reports it: with the line first where its message
/// shows it, and at most 1,023 bytes.
IBIS_API std::string messageText(const Diagnostic& diagnostic);

}  // namespace ibis
