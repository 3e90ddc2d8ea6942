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

/// A file that was read, with all that was found wrong with it.
///
/// It owns the text and every record; what is reached through it lives as long as it does, and
/// stays where it is when it is moved. Reading is for many threads at once; one document belongs to
/// one thread at a time, or to many that only look at it.
class IBIS_API Document {
 public:
  Document(Document&&) noexcept;
  Document& operator=(Document&&) noexcept;
  ~Document();

  /// The records: pins tied to their models, references and input thresholds completed.
  const IBISFileData& file() const;

  /// All that was found wrong, by line; what has no line comes first.
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

/// Reads a file; one that cannot be read gives a document with an error and without components.
///
/// Throws nothing for what a file holds; only std::bad_alloc when memory runs out.
IBIS_API Document read(const std::string& path, const ReadOptions& options = {});

/// Reads a text as it would stand in a file; it is copied.
IBIS_API Document readText(std::string_view text, const ReadOptions& options = {});

/// A diagnostic's text as a simulator's load reports it, with the line in front where it has one.
IBIS_API std::string messageText(const Diagnostic& diagnostic);

}  // namespace ibis
