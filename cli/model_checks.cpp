#include "model_checks.h"

#include <algorithm>

#include "model/estimate_waveforms.h"
#include "output/loop_objects.h"
#include "output/stream/output_stream.h"

namespace ibis::cli {
namespace {

class Nowhere final : public SinkTarget {
 public:
  bool write(std::string_view) override { return true; }
  bool close() override { return true; }
};

class NoSink final : public Sink {
 public:
  std::unique_ptr<SinkTarget> open(const std::string&) override {
    return std::make_unique<Nowhere>();
  }
  bool keep(const std::string&) override { return true; }
};

// Writes a model's tables and waveforms as the library's template does.
void writeData(const IBISModel& model, OutputStream& out) {
  TextBuffer text;
  const ForEachModel loop(model);
  const auto writeIf = [&](std::string_view condition, std::string_view keyword) {
    if (loop.evaluate(condition, {})) loop.value(keyword, &out, {}, text);
  };
  writeIf("ifhasivdata", "ivdata");
  writeIf("ifhasclamps", "clampdata");
  writeIf("ifhaswaveforms", "waveforms");
  const auto writePairs = [&](const std::vector<IBISWaveform>& list, std::int32_t edge) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      ForEachWaveform(model, static_cast<std::int32_t>(i), edge)
          .value("spicepairs", &out, {}, text);
    }
  };
  writePairs(model.risingWaveforms, ForEachWaveform::rising);
  writePairs(model.fallingWaveforms, ForEachWaveform::falling);
}

}  // namespace

bool hasFiniteData(const IBISModel& model) {
  NoSink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, {});
  writeData(model, *out);
  return !out->hasNonFinite();
}

bool lacksPoints(const IBISModel& model) {
  return std::ranges::any_of(model.risingWaveforms, hasTooManyPoints) ||
         std::ranges::any_of(model.fallingWaveforms, hasTooManyPoints);
}

}  // namespace ibis::cli
