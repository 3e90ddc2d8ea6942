#pragma once

#include <string>
#include <vector>

#include "analysis/device.h"
#include "analysis/switching.h"
#include "ibis/diagnostic.h"

namespace ibis::cli {

/// What stands between a component's dies and its pins.
enum class PackageKind { none, pins, coupled };

/// What a person asks of one export.
struct ExportRequest {
  std::string source;
  std::string format = "ngspice";
  std::vector<std::string> corners;  ///< Words; none for typ.
  std::string component;             ///< Empty for the file's first.
  std::vector<std::string> pins;     ///< None for all.
  std::vector<std::string> models;   ///< Models to write without a component.
  std::vector<std::string> selections;
  bool allModels = false;  ///< Every model of the file, without a component.
  PackageKind package = PackageKind::pins;
  double smallestCoupling = 0.01;
  bool hasSmallestCoupling = false;  ///< A person gave it.
  bool hasBench = false;
  bool isLimited = true;  ///< No file is larger than the usual limit of output.
  std::string folder = ".";
};

/// One set of rails of a component, and the pins whose models refer to it.
struct ExportedRails {
  std::vector<std::string> ports;  ///< In the order pu, pd, pc, gc.
  Rails rails;
  std::vector<std::string> pins;  ///< Their ports.
};

/// One subcircuit that was written.
struct ExportedSubcircuit {
  std::string name;
  std::string model;      ///< Empty for a component's.
  std::string component;  ///< Empty for a model that is written without one.
  std::string corner;
  std::string file;
  std::vector<std::string> ports;
  Rails rails;                          ///< Of a component those of its first set.
  std::vector<ExportedRails> railSets;  ///< Of a component, in the order of its ports.
  double span = 0.0;                    ///< Of the longer edge, in seconds.
  EdgeMethod rising = EdgeMethod::none;
  EdgeMethod falling = EdgeMethod::none;
};

/// What one export wrote and what it has to say.
struct Export {
  std::vector<std::string> files;
  std::vector<ExportedSubcircuit> subcircuits;
  std::vector<Diagnostic> warnings;
  std::vector<Diagnostic> errors;
};

}  // namespace ibis::cli
