#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ibis/package_model.h"
#include "output/stream/output_stream.h"

namespace ibis {

/// Writes the ports and behavioural elements of a package model, as they stand after a subcircuit's
/// "+".
///
/// `nodes` names the pins in the order of the model's pin names. Each pin gets a capacitor, an
/// inductor and a resistor whose charge, flux and voltage are sums over its matrix row.
void writePackageNetlist(OutputStream& out, const IBISPackageModel& model,
                         std::span<const std::string_view> nodes);

/// Writes the lines of one matrix: a head for each row, then a term for each of its entries.
///
/// Entries of rows that are not a pin's are left out.
void writeMatrix(OutputStream& out, std::span<const IBISMatrixEntry> matrix,
                 const IBISPackageModel& model, std::span<const std::string_view> nodes,
                 std::string_view term, std::string_view head);

/// The text with the first occurrence of the pattern, if any, replaced.
std::string replaceFirst(std::string text, std::string_view pattern, std::string_view replacement);

}  // namespace ibis
