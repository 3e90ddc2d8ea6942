#pragma once

#include "output/keyword_handlers.h"

namespace ibis {

/// Opens the file that the rest of the template's word names; writes nothing.
ValueFunction openFile;

// Each writes one text of the file or of the run's component after the blanks held back.
ValueFunction writeComponentName;
ValueFunction writeCopyright;
ValueFunction writeDate;
ValueFunction writeDisclaimer;
ValueFunction writeFileName;
ValueFunction writeFilePath;
ValueFunction writeFileRev;
ValueFunction writeManufacturer;
ValueFunction writeNotes;
ValueFunction writePackageModelName;
ValueFunction writeSource;
ValueFunction writeSpiceComponentName;
ValueFunction writeSubcircuitName;
ValueFunction writeVersion;

/// Writes the netlist of the component's package model and a line end, or nothing at all.
ValueFunction writePackageModel;

/// Writes nothing: a root directory is used in file names alone.
ValueFunction writeRootDirectory;

/// Whether one of the component's models has the type that the first argument names exactly.
ConditionFunction hasModelType;

/// Whether the component names a package model.
ConditionFunction hasPackageModel;

}  // namespace ibis
