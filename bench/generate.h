#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ibis::bench {

/// What a load must find in a generated text.
struct Counts {
  std::size_t lines = 0;
  std::size_t records = 0;  ///< Keyword lines and data lines, what a scan makes of the lines.
  std::size_t pins = 0;
  std::size_t pairs = 0;       ///< Of the pins, as many have a partner.
  std::size_t models = 0;      ///< Without the built-in ones.
  std::size_t usedModels = 0;  ///< Those that pins name, built-in ones included.
  std::size_t selectors = 0;
  std::size_t selectorRows = 0;
  std::size_t tableRows = 0;
  std::size_t waveformRows = 0;        ///< Those of the text; estimated ones are not among them.
  std::size_t estimatedWaveforms = 0;  ///< Waveforms that a load adds.
  std::size_t packagePins = 0;
  std::size_t matrixEntries = 0;  ///< With the mirrored ones.
  std::size_t warnings = 0;
  std::size_t errors = 0;
  std::size_t libraryNumbers = 0;  ///< Numbers in the model library beside those of waveforms.
};

/// A text with what must come of it, and what a caller asks to make the kind show.
struct GeneratedFile {
  std::string text;
  Counts counts;
  std::vector<std::string> pinFilter;
  std::vector<std::string> selections;
};

/// How much to generate: up to a number of bytes, or a number of items if that is not 0.
struct Amount {
  std::size_t bytes = 0;
  std::size_t items = 0;
};

class FileWriter;

/// A kind of file; some are like files of makers, some are made to grow badly.
struct Kind {
  std::string_view name;
  std::string_view item;  ///< What one more item adds.
  void (*begin)(FileWriter&);
  void (*addItem)(FileWriter&);
};

/// Kinds whose size is given in bytes.
std::span<const Kind> contentKinds();

/// Kinds of which each item costs more than the one before, if a load is careless.
std::span<const Kind> growthKinds();

/// The kind of that name, or null.
const Kind* findKind(std::string_view name);

/// The same text for the same amount, always; a load of it has no errors but where it is told.
GeneratedFile generate(const Kind& kind, Amount amount);

}  // namespace ibis::bench
