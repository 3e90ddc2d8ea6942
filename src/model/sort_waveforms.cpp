#include "model/sort_waveforms.h"

#include <numeric>

#include "model/model_types.h"
#include "reader/text/merge_sort.h"

namespace ibis {
namespace {

void sortByFixture(std::vector<IBISWaveform>& waveforms) {
  std::vector<std::size_t> order(waveforms.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  mergeSort(std::span<std::size_t>(order), [&](std::size_t a, std::size_t b) {
    return waveforms[a].rFixture.value < waveforms[b].rFixture.value;
  });
  std::vector<IBISWaveform> sorted;
  sorted.reserve(waveforms.size());
  for (const std::size_t index : order) sorted.push_back(std::move(waveforms[index]));
  waveforms = std::move(sorted);
}

}  // namespace

void sortWaveforms(IBISModel& model) {
  if (!hasOutput(model.type)) return;
  const std::size_t limit = hasPushPullOutput(model.type) ? 2 : 1;
  for (std::vector<IBISWaveform>* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    if (list->size() > limit) sortByFixture(*list);
  }
}

}  // namespace ibis
