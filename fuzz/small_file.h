#pragma once

#include "fuzz.h"
#include "reader/file/parser.h"
#include "small_file_text.h"

namespace ibis::fuzz {

/// A file with a little of everything that a template can ask for, read and prepared.
class SmallFile {
 public:
  SmallFile() : scan_(scanIBISText(smallFileText)) {
    std::int32_t index = 0;
    parseFile(file, scan_.records, index);
    REQUIRE(!file.hasErrors());
    postParse(file, {}, {});
    file.addUserModelSelector("fast");
    file.setUserSubcircuitName("dut");
    file.setFilePath("/small.ibs");
    REQUIRE(!file.hasErrors());
  }

  const IBISComponent* component() const { return file.data().components.front().get(); }

  IBISFile file;

 private:
  IBISScanResult scan_;
};

}  // namespace ibis::fuzz
