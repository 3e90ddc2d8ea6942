#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "export_request.h"
#include "ibis/file.h"
#include "input_files.h"
#include "simulator/dialect.h"
#include "simulator/names.h"

namespace ibis::cli {

/// A series model in the state that is written; a model that is no switch is not on.
struct SeriesState {
  const IBISModel* model = nullptr;
  bool isOn = false;

  friend bool operator==(const SeriesState&, const SeriesState&) = default;
  friend bool operator<(const SeriesState& a, const SeriesState& b) {
    return std::tie(a.model, a.isOn) < std::tie(b.model, b.isOn);
  }
};

/// A series model between two pins.
struct SeriesRow {
  SeriesState state;
  const IBISPin* first = nullptr;
  const IBISPin* second = nullptr;
};

/// What every file of one export shares.
struct ExportChoice {
  const ExportRequest& request;
  const IBISFileData& data;
  const Dialect& dialect;
  const InputFiles& inputs;
  std::uint64_t mostBytes = UINT64_MAX;                     ///< Of each file.
  const IBISComponent* component = nullptr;                 ///< Null for models alone.
  std::vector<const IBISPinEntry*> entries = {};            ///< Of the component, in its order.
  std::vector<const IBISModel*> models = {};                ///< Each once.
  std::map<const IBISModel*, std::string> modelWords = {};  ///< Names without a corner.
  std::string word = {};                                    ///< Of the component or the file.
  std::string componentWord = {};                           ///< Name without a corner.
  std::vector<SeriesRow> series = {};                       ///< Of the component, in its order.
  std::vector<const IBISPin*> barePins = {};                ///< With series elements alone.
  std::map<SeriesState, std::string> seriesWords = {};      ///< Names without a corner.
  UniqueNames names = {};
};

/// Chooses the component, pins and models of a request; errors tell what is not there.
void choose(ExportChoice& choice, Export& result);

}  // namespace ibis::cli
