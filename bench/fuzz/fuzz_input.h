#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "vdstomgr/platform/framework/types.h"

namespace fuzz {

using Bytes = std::vector<BYTE>;

/// One call of an operation, with arguments of a byte each.
struct Step {
  static constexpr std::size_t kBytes = 4;

  BYTE code;
  BYTE a;
  BYTE b;
  BYTE c;

  /// A position: mostly a small one, now and then one that cannot be.
  int Position() const {
    switch (a) {
      case 0xFF:
        return INT32_MAX;
      case 0xFE:
        return INT32_MIN;
      default:
        return a - 1;
    }
  }
  DWORD Number() const { return DWORD{a} << 24 | DWORD{b} << 8 | c; }
  bool Flag() const { return (c & 1) != 0; }
  std::string Text() const {
    return {static_cast<char>(a), static_cast<char>(b), static_cast<char>(c)};
  }
};

/// What the fuzzer gives, taken from its beginning: the number of steps, the steps, then files.
class Input {
 public:
  Input(const BYTE* data, std::size_t size) : bytes_(data, size) {
    const std::size_t count = Take(1).empty() ? 0 : data[0];
    for (std::size_t i = 0; i < count && bytes_.size() >= Step::kBytes; ++i) {
      const auto step = Take(Step::kBytes);
      steps_.push_back({step[0], step[1], step[2], step[3]});
    }
  }

  const std::vector<Step>& Steps() const { return steps_; }

  /// A file behind its length of two bytes; shorter when there is no more.
  std::span<const BYTE> TakeFile() {
    const auto length = Take(2);
    return Take(length.size() < 2 ? 0 : std::size_t{length[0]} | std::size_t{length[1]} << 8);
  }
  std::span<const BYTE> Rest() { return Take(bytes_.size()); }

  /// The same from its parts, for seeds.
  static Bytes Compose(const std::vector<Step>& steps, const Bytes* file, const Bytes& rest) {
    Bytes bytes = {static_cast<BYTE>(steps.size())};
    for (const Step& step : steps) {
      bytes.insert(bytes.end(), {step.code, step.a, step.b, step.c});
    }
    if (file != nullptr) {
      bytes.push_back(static_cast<BYTE>(file->size()));
      bytes.push_back(static_cast<BYTE>(file->size() >> 8));
      bytes.insert(bytes.end(), file->begin(), file->end());
    }
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
  }

 private:
  std::span<const BYTE> Take(std::size_t size) {
    const auto taken = bytes_.first(std::min(size, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return taken;
  }

  std::span<const BYTE> bytes_;
  std::vector<Step> steps_;
};

}  // namespace fuzz
