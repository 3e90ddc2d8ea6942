#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "generate.h"
#include "host/load_sequence.h"

namespace ibis::bench {

/// Appends the numbers that stand alone in a text, between blanks, commas, brackets and the like.
void appendNumbers(std::string_view text, std::vector<double>& numbers);

/// The content of a file, empty if there is none.
std::string readFile(const std::string& name);

// Each tells what differs from the generator's counts, or nothing.

std::string checkScan(const Counts& counts, const IBISScanResult& scan);
std::string checkParsed(const Counts& counts, const IBISFileData& data);

/// Also holds the pin resolution and the estimated waveforms against the counts.
std::string checkResolved(const GeneratedFile& file, const IBISFileData& data);

/// Looks through a template's output; the name is that of the template.
std::string checkOutput(const GeneratedFile& file, const IBISFileData& data,
                        std::string_view templateName, std::string_view output);

}  // namespace ibis::bench
