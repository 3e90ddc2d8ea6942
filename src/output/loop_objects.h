#pragma once

#include <optional>

#include "ibis/component.h"
#include "ibis/file.h"
#include "output/loop_object.h"

namespace ibis {

// The loop objects refer to the file's records, which do not change while templates are expanded.

class ForEachModel final : public ForEachObject {
 public:
  explicit ForEachModel(const IBISModel& each) : model(each) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  const IBISModel& model;
};

class ForEachPin : public ForEachObject {
 public:
  /// A pin by itself.
  ForEachPin(const IBISPin& each, const IBISComponent& owner) : pin(&each), component(owner) {}

  /// A pin with its entry in a component; the halves of a pair may be missing.
  ForEachPin(const IBISPinEntry& each, const IBISComponent& owner)
      : pin(each.pin), entry(&each), component(owner) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  const IBISPin* pin;
  const IBISPinEntry* entry = nullptr;
  const IBISComponent& component;
};

/// The pins of a component, a pass each.
class ForEachOfPins final : public ForEachPin {
 public:
  /// The component has pins.
  explicit ForEachOfPins(const IBISComponent& owner) : ForEachPin(owner.pins.front(), owner) {}
  bool next() override;
  void rewind() override { pin = &component.pins.front(); }
};

/// The entries of a component, or those of one type, a pass each.
class ForEachOfEntries final : public ForEachPin {
 public:
  /// How a pass shows an entry that is half a pair.
  enum class Halves { asTheyStand, asSingles };

  /// Begins at the first entry of the type, which the component has; without a type at the first.
  ForEachOfEntries(const IBISComponent& owner, std::optional<ModelType> type, Halves halves);
  bool next() override;
  void rewind() override;

  /// Whether the component has an entry of the type, or any.
  static bool exist(const IBISComponent& owner, std::optional<ModelType> type);

 private:
  static std::size_t find(const IBISComponent& owner, std::optional<ModelType> type,
                          std::size_t index);
  bool showFrom(std::size_t index);

  std::optional<ModelType> type_;
  Halves halves_;
  std::size_t index_ = 0;
};

class ForEachComponent final : public ForEachObject {
 public:
  explicit ForEachComponent(const IBISComponent& each) : component(each) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  const IBISComponent& component;
};

class ForEachModelSelector final : public ForEachObject {
 public:
  ForEachModelSelector(const IBISModelSelectorRow& choice, IBISString selector, std::string type)
      : row(choice), selectorName(selector), modelType(std::move(type)) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  const IBISModelSelectorRow& row;
  IBISString selectorName;
  std::string modelType;  ///< Type text of the row's model; "unknown" if there is no such model.
};

class ForEachUserModelSelector final : public ForEachObject {
 public:
  explicit ForEachUserModelSelector(IBISString choice) : userName(choice) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  IBISString userName;
};

class ForEachWaveform final : public ForEachObject {
 public:
  static constexpr std::int32_t rising = 0;
  static constexpr std::int32_t falling = 1;

  ForEachWaveform(const IBISModel& owner, std::int32_t number, std::int32_t edge)
      : model(owner), index(number), transition(edge) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  /// The waveform itself.
  const IBISWaveform& waveform() const;

  const IBISModel& model;
  std::int32_t index;       ///< In the model's list of that transition, from 0.
  std::int32_t transition;  ///< 0 rising, 1 falling.
};

class ForEachDiffPin final : public ForEachObject {
 public:
  explicit ForEachDiffPin(const IBISDiffPin& each) : row(each) {}
  LoopWord word(std::string_view keywordText) const override;
  const void* kind() const override;

  IBISDiffPin row;
};

}  // namespace ibis
