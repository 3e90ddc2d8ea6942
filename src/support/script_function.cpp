#include "support/script_function.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace {

struct Registry {
  std::mutex mutex;
  std::vector<const FuncConstruct*> functions;
};

// Made at the first registration, which may come before this library's own static objects.
Registry& registry() {
  static Registry instance;
  return instance;
}

}  // namespace

MessageHandler::~MessageHandler() = default;

FuncConstruct::FuncConstruct(const char* name, ArgTypeList<argType> arguments,
                             ArgTypeList<MultiDef> forms, std::int32_t minimumArguments,
                             std::int32_t maximumArguments, ScriptFunction entry, const char* group,
                             PythonReturnType returnType, FunctionOption option)
    : name_(name),
      arguments_(std::move(arguments)),
      forms_(std::move(forms)),
      minimumArguments_(minimumArguments),
      maximumArguments_(maximumArguments),
      function_(entry),
      group_(group),
      returnType_(returnType),
      option_(option) {
  const std::lock_guard lock(registry().mutex);
  registry().functions.push_back(this);
}

FuncConstruct::~FuncConstruct() {
  const std::lock_guard lock(registry().mutex);
  std::erase(registry().functions, this);
}

const FuncConstruct* findScriptFunction(const char* name) {
  const std::lock_guard lock(registry().mutex);
  for (const FuncConstruct* function : registry().functions) {
    if (std::strcmp(function->name().text(), name) == 0) return function;
  }
  return nullptr;
}
