#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ibis/api.h"
#include "ibis/component.h"
#include "ibis/diagnostic.h"
#include "ibis/ibis_string.h"
#include "ibis/model.h"
#include "ibis/package_model.h"

namespace ibis {

/// One row of [Model Selector].
struct IBISModelSelectorRow {
  IBISString modelName;    ///< Name of a [Model].
  IBISString description;  ///< The rest of the line without quotes.
};

/// One [Model Selector]: a name that pins use for one of several models.
struct IBISModelSelector {
  IBISString name;                         ///< [Model Selector]
  std::vector<IBISModelSelectorRow> rows;  ///< In file order.
};

/// All records of one load; lists are in file order.
struct IBISFileData {
  std::int32_t version = 0;  ///< [IBIS Ver], an id of the version table; 0 until it was read.
  IBISString fileName;       ///< [File Name]
  IBISString fileRev;        ///< [File Rev]
  IBISString date;           ///< [Date]
  IBISString source;         ///< [Source], lines joined by line feeds.
  IBISString notes;          ///< [Notes], likewise.
  IBISString disclaimer;     ///< [Disclaimer], likewise.
  IBISString copyright;      ///< [Copyright], likewise.
  std::vector<std::unique_ptr<IBISComponent>> components;  ///< Each [Component].
  std::vector<IBISModelSelector> modelSelectors;           ///< Each [Model Selector].
  /// The three built-in models GND, POWER and NC, then each [Model].
  std::vector<std::unique_ptr<IBISModel>> models;
  std::vector<std::unique_ptr<IBISPackageModel>> packageModels;  ///< Each [Define Package Model].
  std::shared_ptr<IBISNameTable> nameTable;  ///< Names of components and models.
  std::vector<IBISString> modelSelections;   ///< The user's selections, the most preferred first.
  IBISString userSubcircuitName;             ///< Empty unless the user gave one.
  IBISString filePath;                       ///< Canonical path of the file, empty for a text.
  std::vector<Diagnostic> errors;            ///< In the order in which they were reported.
  std::vector<Diagnostic> warnings;          ///< In the order in which they were reported.
  StringPool strings;                        ///< Texts made while reading.
};

/// Returns the first package model of exactly this name, or null.
IBIS_API const IBISPackageModel* findPackageModel(const IBISFileData& data, std::string_view name);

}  // namespace ibis
