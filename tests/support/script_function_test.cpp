#include "support/script_function.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>

#include "harness/fake_host.h"

namespace ibis::testing {
namespace {

using Handler = YRef<MessageHandler>;

// What the host's side of a reference looks like in memory.
struct HostBlock {
  MessageHandler* object;
  std::int32_t count;
};

HostBlock blockOf(const Handler& reference) {
  static_assert(sizeof(Handler) == sizeof(HostBlock*));
  const HostBlock* held = nullptr;
  std::memcpy(&held, &reference, sizeof held);
  HostBlock block{};
  std::memcpy(&block.object, held, sizeof block.object);
  std::memcpy(&block.count, &held->count, sizeof block.count);
  return block;
}

// A handler that counts its own deaths.
MessageHandler* mortal(int& deaths) {
  return new FakeHandler([&deaths] { ++deaths; });
}

// Where a virtual operation stands in its class's table.
template <class Operation>
std::ptrdiff_t placeOf(Operation operation) {
  std::ptrdiff_t place = 0;
  static_assert(sizeof operation >= sizeof place);
  std::memcpy(&place, &operation, sizeof place);
  return place;
}

FUNC_ERROR doNothing(const FuncArgsMinimal&, FuncResultMinimal*, Handler, const ScpParseContext&,
                     const FunctionRunTime&) {
  return FUNC_ERROR::success;
}

std::unique_ptr<FuncConstruct> makeFunction(const char* name, std::int32_t minimum = 0) {
  return std::make_unique<FuncConstruct>(name, ArgTypeList<argType>(), ArgTypeList<MultiDef>(),
                                         minimum, minimum, doNothing, "",
                                         PythonReturnType::stringArray, FunctionOption());
}

TEST(YRef, RefersToNothingAtFirst) {
  const Handler empty;
  EXPECT_EQ(empty.get(), nullptr);
  EXPECT_EQ(empty.count(), 0);
  const Handler copy(empty);
  EXPECT_EQ(copy.get(), nullptr);
  EXPECT_EQ(copy.count(), 0);
}

TEST(YRef, CountsItsReferences) {
  int deaths = 0;
  const Handler one(mortal(deaths));
  EXPECT_EQ(one.count(), 1);
  {
    const Handler two(one);
    EXPECT_EQ(two.get(), one.get());
    EXPECT_EQ(one.count(), 2);
    EXPECT_EQ(two.count(), 2);
  }
  EXPECT_EQ(one.count(), 1);
  EXPECT_EQ(deaths, 0);
}

TEST(YRef, DestroysTheObjectWithTheLastReference) {
  int deaths = 0;
  auto one = std::make_unique<Handler>(mortal(deaths));
  auto two = std::make_unique<Handler>(*one);
  one.reset();
  EXPECT_EQ(deaths, 0);
  two.reset();
  EXPECT_EQ(deaths, 1);
}

TEST(YRef, LetsGoOfItsObjectWhenAssignedAnother) {
  int firstDeaths = 0;
  int secondDeaths = 0;
  Handler one(mortal(firstDeaths));
  const Handler two(mortal(secondDeaths));
  one = two;
  EXPECT_EQ(firstDeaths, 1);
  EXPECT_EQ(secondDeaths, 0);
  EXPECT_EQ(two.count(), 2);
  one = Handler();
  EXPECT_EQ(one.count(), 0);
  EXPECT_EQ(two.count(), 1);
}

TEST(YRef, KeepsItsObjectWhenAssignedToItself) {
  int deaths = 0;
  Handler one(mortal(deaths));
  const Handler& alias = one;
  one = alias;
  EXPECT_EQ(one.count(), 1);
  EXPECT_EQ(deaths, 0);
}

TEST(YRef, CountsAlsoWithoutAnObject) {
  const Handler one(nullptr);
  const Handler two(one);
  EXPECT_EQ(one.get(), nullptr);
  EXPECT_EQ(one.count(), 2);
}

TEST(YRef, IsAPointerToABlockOfObjectAndCount) {
  int deaths = 0;
  const Handler one(mortal(deaths));
  const Handler two(one);
  EXPECT_EQ(blockOf(one).object, one.get());
  EXPECT_EQ(blockOf(one).count, 2);
  EXPECT_EQ(blockOf(two).count, 2);
}

TEST(YRef, CountsCopiesOnSeveralThreads) {
  int deaths = 0;
  {
    const Handler one(mortal(deaths));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&one] {
        for (int copy = 0; copy < 10000; ++copy) const Handler other(one);
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(one.count(), 1);
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(HostInterface, HasItsVirtualOperationsInTheHostsOrder) {
  EXPECT_LT(placeOf(&FuncArgsMinimal::stringArray), placeOf(&FuncArgsMinimal::stringCount));
  EXPECT_LT(placeOf(&FuncResultMinimal::allocateStrings), placeOf(&FuncResultMinimal::finish));
  EXPECT_TRUE(std::has_virtual_destructor_v<MessageHandler>);
}

TEST(HostInterface, HasTheHostsNumbers) {
  EXPECT_EQ(static_cast<std::int32_t>(FUNC_ERROR::success), 0);
  EXPECT_EQ(static_cast<std::int32_t>(argType::stringArray), 1);
  EXPECT_EQ(static_cast<std::int32_t>(PythonReturnType::stringArray), 12);
  EXPECT_EQ(FunctionOption().flags, 0);
}

TEST(FuncConstruct, KeepsWhatItIsGiven) {
  const FuncConstruct function("Keeper", {argType::stringArray, argType::stringArray}, {MultiDef()},
                               1, 3, doNothing, "Group", PythonReturnType::stringArray,
                               {.flags = 5});
  EXPECT_STREQ(function.name().text(), "Keeper");
  EXPECT_EQ(function.arguments().size(), 2u);
  EXPECT_EQ(function.forms().size(), 1u);
  EXPECT_EQ(function.minimumArguments(), 1);
  EXPECT_EQ(function.maximumArguments(), 3);
  EXPECT_EQ(function.function(), &doNothing);
  EXPECT_STREQ(function.group().text(), "Group");
  EXPECT_EQ(function.returnType(), PythonReturnType::stringArray);
  EXPECT_EQ(function.option().flags, 5);
}

TEST(FuncConstruct, CopiesItsTexts) {
  char name[] = "Copied";
  char group[] = "Group";
  const FuncConstruct function(name, {}, {}, 0, 0, doNothing, group, PythonReturnType::stringArray,
                               FunctionOption());
  name[0] = group[0] = '?';
  EXPECT_STREQ(function.name().text(), "Copied");
  EXPECT_STREQ(function.group().text(), "Group");
  EXPECT_EQ(findScriptFunction("Copied"), &function);
}

TEST(FindScriptFunction, GivesNullForAnUnknownName) {
  EXPECT_EQ(findScriptFunction("Unknown"), nullptr);
  EXPECT_EQ(findScriptFunction(""), nullptr);
}

TEST(FindScriptFunction, FindsAFunctionForAsLongAsItLives) {
  EXPECT_EQ(findScriptFunction("Lived"), nullptr);
  auto function = makeFunction("Lived");
  EXPECT_EQ(findScriptFunction("Lived"), function.get());
  function.reset();
  EXPECT_EQ(findScriptFunction("Lived"), nullptr);
}

TEST(FindScriptFunction, ComparesTheWholeNameWithItsCase) {
  const auto function = makeFunction("Exact");
  for (const char* name : {"exact", "EXACT", "Exac", "Exact ", " Exact", "Exact_"}) {
    EXPECT_EQ(findScriptFunction(name), nullptr) << name;
  }
  EXPECT_EQ(findScriptFunction("Exact"), function.get());
}

TEST(FindScriptFunction, TellsFunctionsApart) {
  const auto one = makeFunction("One", 1);
  const auto two = makeFunction("Two", 2);
  EXPECT_EQ(findScriptFunction("One"), one.get());
  EXPECT_EQ(findScriptFunction("Two"), two.get());
}

TEST(FindScriptFunction, FindsTheOtherOfTwoWhenOneOfTheNameIsGone) {
  for (const bool firstGoes : {true, false}) {
    auto first = makeFunction("Twice");
    auto second = makeFunction("Twice");
    (firstGoes ? first : second).reset();
    EXPECT_EQ(findScriptFunction("Twice"), (firstGoes ? second : first).get());
  }
  EXPECT_EQ(findScriptFunction("Twice"), nullptr);
}

TEST(FindScriptFunction, FindsOnAnyThreadWhileOthersRegister) {
  const auto function = makeFunction("Steady");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&function, name = "Passing" + std::to_string(i)] {
      for (int turn = 0; turn < 200; ++turn) {
        const auto passing = makeFunction(name.c_str());
        EXPECT_EQ(findScriptFunction("Steady"), function.get());
        EXPECT_EQ(findScriptFunction(name.c_str()), passing.get());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(findScriptFunction("Passing0"), nullptr);
}

}  // namespace
}  // namespace ibis::testing
