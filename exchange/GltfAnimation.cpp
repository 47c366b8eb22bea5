#include "exchange/GltfAnimation.h"

#include "exchange/TurnAngles.h"

#include <Orvo/Exchange/ExchangeError.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace Orvo::Exchange {
namespace {

/// The farthest that a rotary axis may turn from key to key, in degrees.
constexpr double LargestTurnDeg = 90.0;

/// More turning than this between two keys is no motion that anyone could see, in degrees.
constexpr double LargestStepDeg = 9e6;

/// Calls `use` with time and value of each key of an axis and, for a rotary one, of those between.
template <typename Use>
void ForKeys(const std::vector<AnimationKey>& keys, int reg, bool isRotary, Use use) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const double seconds = keys[i].seconds;
    const double value = keys[i].position[reg];
    use(seconds, value);
    if (!isRotary || i + 1 == keys.size()) {
      continue;
    }
    const double step = keys[i + 1].position[reg] - value;
    const auto pieceNb = static_cast<int>(std::ceil(std::abs(step) / LargestTurnDeg));
    for (int piece = 1; piece < pieceNb; ++piece) {
      const double share = static_cast<double>(piece) / pieceNb;
      use(seconds + (keys[i + 1].seconds - seconds) * share, value + step * share);
    }
  }
}

[[noreturn]] void BlameKey(std::size_t key, const std::string& what) {
  throw ExchangeError("key " + std::to_string(key + 1) + " of the animation: " + what);
}

void SetTimes(BinaryPart* times, double first, double last) {
  times->min = {static_cast<float>(first)};
  times->max = {static_cast<float>(last)};
}

}  // namespace

void RequireKeys(const std::vector<AnimationKey>& keys, int registerNb) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const AnimationKey& key = keys[i];
    const auto seconds = static_cast<float>(key.seconds);
    if (!std::isfinite(seconds) || key.seconds < 0.0) {
      BlameKey(i, "the time must be a number from 0");
    }
    if (i > 0 && !(seconds > static_cast<float>(keys[i - 1].seconds))) {
      BlameKey(i, "the time must be greater than the one before, also as a 32-bit float");
    }
    if (key.position.Size() < static_cast<unsigned long long>(std::max(registerNb, 0))) {
      BlameKey(i, "the position has fewer values than the machine has registers");
    }
    for (int reg = 0; reg < registerNb; ++reg) {
      if (!std::isfinite(key.position[reg])) {
        BlameKey(i, "the value of register " + std::to_string(reg) + " isn't finite");
      }
    }
  }
}

BinaryPart MakeTimes(const std::vector<AnimationKey>& keys) {
  BinaryPart times;
  times.count = keys.size();
  SetTimes(&times, keys.front().seconds, keys.back().seconds);
  times.write = [&keys](BinarySink* sink) {
    for (const AnimationKey& key : keys) {
      sink->Float(static_cast<float>(key.seconds));
    }
  };
  return times;
}

std::optional<ChannelParts> MakeChannel(const TreeNode& node, const std::vector<AnimationKey>& keys,
                                        double restValue, double scale) {
  const int reg = node.reg;
  const bool isRotary = node.motion == Motion::Rotary;
  const bool isStill = std::all_of(keys.begin(), keys.end(), [&](const AnimationKey& key) {
    return key.position[reg] == restValue;
  });
  if (isStill) {
    return std::nullopt;
  }
  for (std::size_t i = 1; isRotary && i < keys.size(); ++i) {
    if (!(std::abs(keys[i].position[reg] - keys[i - 1].position[reg]) <= LargestStepDeg)) {
      BlameKey(i, Describe(*node.entity) + " turns too far at once");
    }
  }
  ChannelParts parts;
  float last = -1.0F;
  ForKeys(keys, reg, isRotary, [&](double seconds, double value) {
    const auto time = static_cast<float>(seconds);
    if (!(time > last)) {
      throw ExchangeError(Describe(*node.entity) +
                          " turns so fast that 32-bit floats can't tell the times apart");
    }
    last = time;
    if (!isRotary) {
      for (int i = 0; i < 3; ++i) {
        const double place = (node.origin[i] + node.direction[i] * value) * scale;
        if (!std::isfinite(static_cast<float>(place))) {
          throw ExchangeError(Describe(*node.entity) + " goes where 32-bit floats can't");
        }
      }
    }
    ++parts.values.count;
  });
  parts.isOnKeys = parts.values.count == keys.size();
  parts.times.count = parts.values.count;
  SetTimes(&parts.times, keys.front().seconds, keys.back().seconds);
  parts.times.write = [&keys, reg](BinarySink* sink) {
    ForKeys(keys, reg, true,
            [&](double seconds, double /*value*/) { sink->Float(static_cast<float>(seconds)); });
  };
  parts.values.shape = isRotary ? BinaryPart::Shape::Vec4 : BinaryPart::Shape::Vec3;
  parts.values.write = [&keys, &node, reg, isRotary, scale](BinarySink* sink) {
    ForKeys(keys, reg, isRotary, [&](double /*seconds*/, double value) {
      if (isRotary) {
        for (const double part : TurnQuaternion(node.direction, value)) {
          sink->Float(static_cast<float>(part));
        }
        return;
      }
      for (int i = 0; i < 3; ++i) {
        sink->Float(static_cast<float>((node.origin[i] + node.direction[i] * value) * scale));
      }
    });
  };
  return parts;
}

}  // namespace Orvo::Exchange
