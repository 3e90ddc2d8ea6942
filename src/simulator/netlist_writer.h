#pragma once

#include <string>
#include <string_view>

#include "analysis/curve.h"
#include "output/stream/output_stream.h"
#include "simulator/dialect.h"

namespace ibis {

/// Writes lines of a netlist in one dialect, at most 80 characters each where a blank allows it.
class NetlistWriter {
 public:
  /// The stream and the dialect must outlive the writer.
  NetlistWriter(OutputStream& out, const Dialect& dialect) : out_(out), dialect_(dialect) {}

  const Dialect& dialect() const { return dialect_; }

  void comment(std::string_view text);  ///< Any text; it cannot leave the comment.
  void line(std::string_view text);     ///< A statement, folded at blanks.
  void blank() { out_.write('\n'); }

  /// A source between two nodes; the quantity is V or I.
  void source(std::string_view name, std::string_view nodes, char quantity,
              std::string_view formula);

  /// The same whose formula ends in a lookup: factor, then the curve at the argument.
  void tableSource(std::string_view name, std::string_view nodes, char quantity,
                   std::string_view factor, std::string_view argument, const Curve& curve);

 private:
  OutputStream& out_;
  const Dialect& dialect_;
};

/// A number of a netlist: seven digits, no suffix.
std::string spiceNumber(double value);

}  // namespace ibis
