#pragma once

#include "export_choice.h"
#include "simulator/subcircuit_file.h"

namespace ibis::cli {

/// Adds a warning to an export and to the file that it concerns.
void warn(Export& result, SubcircuitFile& file, Diagnostic diagnostic);

/// Gives the pins of the file's component the matrices of its package model, and tells what of them
/// cannot be written.
void couplePins(const ExportChoice& choice, SubcircuitFile& file, Export& result);

/// Tells how many pins have values that no package element has.
void tellPinValues(const ExportChoice& choice, SubcircuitFile& file, Export& result);

}  // namespace ibis::cli
