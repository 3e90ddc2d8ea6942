#pragma once

#include "export_choice.h"
#include "simulator/subcircuit_file.h"

namespace ibis::cli {

/// Chooses the component's series elements and the pins that nothing else stands on; tells rows
/// that lead nowhere.
void chooseSeries(ExportChoice& choice, Export& result);

/// Gives the file's component its series elements, each model's subcircuit once for each state.
void addSeries(const ExportChoice& choice, SubcircuitFile& file, Export& result);

/// Removes what a load says against series elements, once they are written.
void forgetSeriesRefusals(std::vector<Diagnostic>& warnings);

}  // namespace ibis::cli
