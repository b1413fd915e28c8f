/// \file
/// Values of the simulator as bytes, between two programs of one build.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "simulator/camera_config.hpp"
#include "simulator/faults.hpp"
#include "simulator/request_log.hpp"

namespace vexa::simulator {

/// Passes every member of a value to an archive, in a fixed order.
template <typename Archive>
void Members(Archive& archive, Picture& picture) {
  archive(picture.width, picture.height, picture.rgb);
}

template <typename Archive>
void Members(Archive& archive, CameraConfig& config) {
  archive(config.product_id, config.variant, config.firmware, config.version_word_a,
          config.colour_array, config.header_size, config.scan_settings_tag,
          config.transfer_formats, config.scan_modes, config.clock_modes, config.max_width,
          config.max_height, config.capabilities, config.usb_speed, config.descriptor_override,
          config.driver_version, config.pace, config.scene, config.moving_parts, config.noise,
          config.defect_pixels, config.seed, config.illuminant, config.user_id, config.user_name);
}

template <typename Archive>
void Members(Archive& archive, RequestMatcher& matcher) {
  archive(matcher.code, matcher.request, matcher.value, matcher.index, matcher.device_to_host);
}

template <typename Archive>
void Members(Archive& archive, LoggedRequest& entry) {
  archive(entry.code, entry.type, entry.request, entry.value, entry.index, entry.length,
          entry.timeout_ms, entry.data, entry.record_size, entry.output_size, entry.status,
          entry.returned);
}

/// Values whose memory is their meaning.
template <typename Value>
inline constexpr bool kIsPlain =
    std::is_arithmetic_v<Value> || std::is_enum_v<Value> || std::is_same_v<Value, Status>;

/// Appends values to a list of bytes.
class Writer {
 public:
  template <typename... Values>
  void operator()(const Values&... values) {
    (Put(values), ...);
  }

  const std::vector<std::uint8_t>& bytes() const { return bytes_; }

 private:
  template <typename Value>
  void Put(const Value& value) {
    if constexpr (kIsPlain<Value>) {
      PutBytes(&value, sizeof value);
    } else {
      // Members() serves readers, too; a writer changes nothing.
      Members(*this, const_cast<Value&>(value));
    }
  }
  template <typename Value, std::size_t kSize>
  void Put(const std::array<Value, kSize>& values) {
    for (const Value& value : values) Put(value);
  }
  template <typename Value>
  void Put(const std::vector<Value>& values) {
    Put(static_cast<std::uint32_t>(values.size()));
    for (const Value& value : values) Put(value);
  }
  void Put(const std::string& text) {
    Put(static_cast<std::uint32_t>(text.size()));
    PutBytes(text.data(), text.size());
  }
  template <typename Value>
  void Put(const std::optional<Value>& value) {
    Put(value.has_value());
    if (value) Put(*value);
  }
  template <typename Value>
  void Put(const std::shared_ptr<const Value>& value) {
    Put(value != nullptr);
    if (value) Put(*value);
  }

  void PutBytes(const void* bytes, std::size_t size) {
    const std::size_t begin = bytes_.size();
    bytes_.resize(begin + size);
    std::memcpy(bytes_.data() + begin, bytes, size);
  }

  std::vector<std::uint8_t> bytes_;
};

/// Takes values from a list of bytes; std::out_of_range when it is too short for them.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  template <typename... Values>
  void operator()(Values&... values) {
    (Get(values), ...);
  }

 private:
  std::span<const std::uint8_t> Take(std::size_t size) {
    if (size > bytes_.size()) throw std::out_of_range("a value lacks bytes");
    const std::span<const std::uint8_t> taken = bytes_.first(size);
    bytes_ = bytes_.subspan(size);
    return taken;
  }

  /// Number of elements that follow; each takes at least a byte.
  std::size_t TakeCount() {
    std::uint32_t count = 0;
    Get(count);
    if (count > bytes_.size()) throw std::out_of_range("a list lacks bytes");
    return count;
  }

  template <typename Value>
  void Get(Value& value) {
    if constexpr (kIsPlain<Value>) {
      std::memcpy(&value, Take(sizeof value).data(), sizeof value);
    } else {
      Members(*this, value);
    }
  }
  template <typename Value, std::size_t kSize>
  void Get(std::array<Value, kSize>& values) {
    for (Value& value : values) Get(value);
  }
  template <typename Value>
  void Get(std::vector<Value>& values) {
    values.resize(TakeCount());
    for (Value& value : values) Get(value);
  }
  void Get(std::string& text) {
    const std::span<const std::uint8_t> taken = Take(TakeCount());
    text.assign(taken.begin(), taken.end());
  }
  template <typename Value>
  void Get(std::optional<Value>& value) {
    bool present = false;
    Get(present);
    value.reset();
    if (present) Get(value.emplace());
  }
  template <typename Value>
  void Get(std::shared_ptr<const Value>& value) {
    bool present = false;
    Get(present);
    value.reset();
    if (!present) return;
    auto read = std::make_shared<Value>();
    Get(*read);
    value = std::move(read);
  }

  std::span<const std::uint8_t> bytes_;
};

}  // namespace vexa::simulator
