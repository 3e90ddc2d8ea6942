#include "checks/package_model.h"

namespace ibis::checks {

const Block* PackageModel::find(std::string_view keyword) const {
  for (const Block& block : view.syntax.blocksOf(part)) {
    if (block.keyword != nullptr && block.keyword->name == keyword) return &block;
  }
  return nullptr;
}

}  // namespace ibis::checks
