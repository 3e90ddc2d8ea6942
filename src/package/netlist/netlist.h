#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ibis/package_model.h"

namespace ibis {

/// The ports and behavioural elements of a package model, as they stand after a subcircuit's "+".
///
/// `nodes` names the pins in the order of the model's pin names. Each pin gets a capacitor, an
/// inductor and a resistor whose charge, flux and voltage are sums over its matrix row. The
/// component's name is not used.
std::string buildPackageNetlist(const IBISPackageModel& model,
                                std::span<const std::string_view> nodes,
                                std::string_view component);

/// The lines of one matrix: a head for each row, then a term for each of its entries.
///
/// Entries of rows that are not a pin's are left out.
std::string matrixText(std::span<const IBISMatrixEntry> matrix, const IBISPackageModel& model,
                       std::span<const std::string_view> nodes, std::string_view term,
                       std::string_view head);

/// The text with the first occurrence of the pattern, if any, replaced.
std::string replaceFirst(std::string text, std::string_view pattern, std::string_view replacement);

}  // namespace ibis
