#pragma once

#include <iostream>
#include <new>
#include <string>

#include "messages.h"
#include "report.h"

namespace ibis::cli {

/// Prints what is told of a file and gives whether memory sufficed.
///
/// Where it did not, that is told instead, of this file alone: one file ends no run over many.
template <class Print>
bool printAlone(const std::string& file, Print print) {
  try {
    print();
    return true;
  } catch (const std::bad_alloc& fault) {
    printMessages(std::cerr, file, {tell(Severity::error, message::workFailed, fault.what())});
    return false;
  }
}

}  // namespace ibis::cli
