// The radio's own time: finishing a boot, and the demo driver, which turns the
// knob now and then and moves the S-meter as band noise would.
#include <algorithm>

#include "sim/Transceiver.h"

namespace tolvane::sim {

using namespace std::chrono_literals;

namespace {

// The demo driver catches up at most this far after a long pause of the owner.
constexpr Duration kMaxCatchUp = 10s;

}  // namespace

void Transceiver::advance(Duration by) {
  now_ += by;
  if (bootDoneAt_ && now_ >= *bootDoneAt_) {
    bootDoneAt_.reset();
    state_.powered = true;
    nextKnob_ = now_ + kKnobStep;
    nextMeter_ = now_ + kMeterStep;
  }
  if (!options_.demo || !state_.powered) return;
  if (now_ - nextMeter_ > kMaxCatchUp) nextMeter_ = now_;
  if (now_ - nextKnob_ > kMaxCatchUp) nextKnob_ = now_;
  while (nextMeter_ <= now_ || nextKnob_ <= now_) {
    const bool knob = nextKnob_ <= nextMeter_;
    if (knob) {
      nextKnob_ += kKnobStep;
      const Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
      if (side.memory) continue;  // a recalled channel stays put
      std::int64_t step = std::uniform_int_distribution<std::int64_t>(1, 50)(random_) * 10;
      if (random_() & 1) step = -step;
      const auto hz = static_cast<std::int64_t>(side.vfoFrequency);
      if (bandOf(static_cast<std::uint64_t>(hz + step)) != bandOf(static_cast<std::uint64_t>(hz))) step = -step;
      turnKnob(step);
    } else {
      nextMeter_ += kMeterStep;
      // Band noise around S3 to S5, now and then a strong signal.
      int reading = std::uniform_int_distribution<int>(35, 75)(random_);
      if (std::uniform_int_distribution<int>(0, 9)(random_) == 0)
        reading = std::uniform_int_distribution<int>(140, 230)(random_);
      setSMeter(reading);
    }
  }
}

std::optional<Duration> Transceiver::nextEvent() const {
  std::optional<Duration> next;
  if (bootDoneAt_) next = *bootDoneAt_;
  if (options_.demo && state_.powered) {
    const Duration demo = std::min(nextKnob_, nextMeter_);
    next = next ? std::min(*next, demo) : demo;
  }
  if (!next) return std::nullopt;
  return std::max(Duration{0}, *next - now_);
}

void Transceiver::setDemo(bool on) {
  if (on && !options_.demo) {
    nextKnob_ = now_ + kKnobStep;
    nextMeter_ = now_ + kMeterStep;
  }
  options_.demo = on;
}

}  // namespace tolvane::sim
