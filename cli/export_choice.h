#pragma once

#include <map>
#include <string>
#include <vector>

#include "export_request.h"
#include "ibis/file.h"
#include "simulator/dialect.h"
#include "simulator/names.h"

namespace ibis::cli {

/// What every file of one export shares.
struct ExportChoice {
  const ExportRequest& request;
  const IBISFileData& data;
  const Dialect& dialect;
  const IBISComponent* component = nullptr;                 ///< Null for models alone.
  std::vector<const IBISPinEntry*> entries = {};            ///< Of the component, in its order.
  std::vector<const IBISModel*> models = {};                ///< Each once.
  std::map<const IBISModel*, std::string> modelWords = {};  ///< Names without a corner.
  std::string word = {};                                    ///< Of the component or the file.
  std::string componentWord = {};                           ///< Name without a corner.
  UniqueNames names = {};
};

/// Chooses the component, pins and models of a request; errors tell what is not there.
void choose(ExportChoice& choice, Export& result);

}  // namespace ibis::cli
