#pragma once

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "support/export.h"
#include "support/ystring.h"

// The interface between a plug-in and the simulator: a static FuncConstruct registers a script
// function while the library loads and removes it while the library unloads. The host looks
// functions up by name and calls them on the thread of the script.

/// The status that a script function returns to the host.
enum class FUNC_ERROR : std::int32_t { success = 0 };

/// The kind of one argument of a script function.
enum class argType : std::int32_t { stringArray = 1 };

/// Several forms of one argument; no function here has any.
struct MultiDef {};

/// The host's list of settings for a registration.
template <class T>
using ArgTypeList = std::vector<T>;

/// The kind of value that a script function returns to the host's other scripting language.
enum class PythonReturnType : std::int32_t { stringArray = 12 };

/// Further settings of a script function; the first word holds flags.
struct FunctionOption {
  std::int32_t flags = 0;
};

/// The script's parse state; not used by functions that need only their arguments.
struct ScpParseContext;

/// The host's state of one call; not used by functions that keep nothing.
struct FunctionRunTime;

/// Where a script function may write messages; destroyed through its virtual destructor.
class IBIS_SUPPORT_API MessageHandler {
 public:
  virtual ~MessageHandler();
};

/// A counted reference: a pointer to a block that holds an object pointer and an atomic 32-bit
/// count.
///
/// The last reference destroys the object, if any, and frees the block. References may be copied on
/// any thread; one reference belongs to one thread at a time.
template <class T>
class YRef {
 public:
  YRef() = default;                                             ///< Refers to nothing.
  explicit YRef(T* object) : block_(new Block{object, {1}}) {}  ///< Owns the object.
  YRef(const YRef& other) : block_(other.block_) {
    if (block_ != nullptr) ++block_->count;
  }
  YRef& operator=(YRef other) {
    std::swap(block_, other.block_);
    return *this;
  }
  ~YRef() {
    if (block_ == nullptr || --block_->count != 0) return;
    delete block_->object;
    delete block_;
  }

  T* get() const { return block_ != nullptr ? block_->object : nullptr; }

  /// How many references share the object; 0 for a reference to nothing.
  std::int32_t count() const { return block_ != nullptr ? block_->count.load() : 0; }

 private:
  struct Block {
    T* object;
    std::atomic<std::int32_t> count;
  };

  Block* block_ = nullptr;
};

/// The arguments of one call; valid until the call returns.
class FuncArgsMinimal {
 public:
  virtual ~FuncArgsMinimal() = default;

  /// The NUL-terminated 8-bit strings of an argument, or null when it is absent.
  ///
  /// A null pointer follows the last string.
  virtual const char* const* stringArray(std::int32_t index) const = 0;

  /// How many strings the argument has.
  virtual std::int32_t stringCount(std::int32_t index) const = 0;
};

/// The result of one call, made by the host and filled by the function.
class FuncResultMinimal {
 public:
  virtual ~FuncResultMinimal() = default;

  /// Makes the result an array of `count` string slots, all null, and returns it for filling.
  ///
  /// Each slot takes a heap string, which the result then owns and releases with free(). A second
  /// call releases what the first one made.
  virtual char** allocateStrings(std::int32_t count) = 0;

  /// Ends the filling; the function calls it once, whether it succeeded or not.
  virtual void finish() = 0;
};

/// A script function as the host calls it.
using ScriptFunction = FUNC_ERROR (*)(const FuncArgsMinimal&, FuncResultMinimal*,
                                      YRef<MessageHandler>, const ScpParseContext&,
                                      const FunctionRunTime&);

/// Registers a script function for as long as it lives; made and destroyed on the loading thread.
class IBIS_SUPPORT_API FuncConstruct {
 public:
  /// The texts are copied. `group` is a further text that only the host uses.
  FuncConstruct(const char* name, ArgTypeList<argType> arguments, ArgTypeList<MultiDef> forms,
                std::int32_t minimumArguments, std::int32_t maximumArguments, ScriptFunction entry,
                const char* group, PythonReturnType returnType, FunctionOption option);
  ~FuncConstruct();
  FuncConstruct(const FuncConstruct&) = delete;
  FuncConstruct& operator=(const FuncConstruct&) = delete;

  const YString& name() const { return name_; }
  const ArgTypeList<argType>& arguments() const { return arguments_; }
  const ArgTypeList<MultiDef>& forms() const { return forms_; }
  std::int32_t minimumArguments() const { return minimumArguments_; }
  std::int32_t maximumArguments() const { return maximumArguments_; }
  ScriptFunction function() const { return function_; }
  const YString& group() const { return group_; }
  PythonReturnType returnType() const { return returnType_; }
  FunctionOption option() const { return option_; }

 private:
  YString name_;
  ArgTypeList<argType> arguments_;
  ArgTypeList<MultiDef> forms_;
  std::int32_t minimumArguments_;
  std::int32_t maximumArguments_;
  ScriptFunction function_;
  YString group_;
  PythonReturnType returnType_;
  FunctionOption option_;
};

/// The registration of a script function, or null; valid until its library is unloaded.
///
/// Any thread, but not while the library that registered it is being unloaded.
IBIS_SUPPORT_API const FuncConstruct* findScriptFunction(const char* name);
