/// \file
/// Cameras of the test's own, driven through the exports.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "VexaAPI.h"
#include "answers.hpp"
#include "cameras.hpp"

namespace vexa::test {

/// A control request in one line, as it went over the wire: type, request, value, index, then the
/// data bytes sent or the length asked for. "40 80 0050 0000 [01 00]", "C0 12 0000 0000 +64".
inline std::string Line(const simulator::LoggedRequest& entry) {
  char text[64];
  std::snprintf(text, sizeof text, "%02X %02X %04X %04X ", entry.type, entry.request, entry.value,
                entry.index);
  std::string line = text;
  if (entry.device_to_host()) {
    return line + "+" + std::to_string(entry.length);
  }
  for (const std::uint8_t byte : entry.data) {
    std::snprintf(text, sizeof text, "%c%02X", line.back() == ' ' ? '[' : ' ', byte);
    line += text;
  }
  return line + (entry.data.empty() ? "[]" : "]");
}

using Lines = std::vector<std::string>;
using Call = std::function<BOOL()>;

/// A call that succeeds, and what it sends.
struct WireCase {
  Call call;
  Lines wire;
};

class CameraTest : public ::testing::Test {
 protected:
  CameraTest() { SetLastError(0); }

  ~CameraTest() override {
    for (HANDLE camera : open_) {
      Vexa_Close(camera);
    }
  }

  std::shared_ptr<Twin> Plug(simulator::CameraConfig config) {
    return plugged_.emplace_back(bus_.Add(std::move(config)));
  }

  std::shared_ptr<Twin> Plug(std::uint16_t product_id = 0x0510) {
    return Plug(simulator::ForProduct(product_id));
  }

  void Remove(std::shared_ptr<Twin> twin) {
    std::erase(plugged_, twin);
    bus_.Remove(twin);
  }

  /// Opens a camera that the fixture closes.
  HANDLE Open() {
    HANDLE camera = Vexa_Open();
    EXPECT_NE(camera, INVALID_HANDLE_VALUE) << "error " << GetLastError();
    if (camera != INVALID_HANDLE_VALUE) {
      open_.push_back(camera);
    }
    return camera;
  }

  /// Opens a camera of this kind, the only one plugged in: those before it are closed and removed.
  HANDLE OpenOnly(simulator::CameraConfig config) {
    while (!open_.empty()) {
      Close(open_.back());
    }
    while (!plugged_.empty()) {
      Remove(plugged_.back());
    }
    twin_ = Plug(std::move(config));
    HANDLE camera = Open();
    twin_->ClearLog();
    return camera;
  }

  void Close(HANDLE camera) {
    std::erase(open_, camera);
    Vexa_Close(camera);
  }

  /// The control requests that reached the camera since the last call.
  static Lines Wire(Twin& twin) {
    Lines lines;
    for (const simulator::LoggedRequest& entry : twin.Log()) {
      if (entry.code == platform::ControlCode::kControlRequest) {
        lines.push_back(Line(entry));
      }
    }
    twin.ClearLog();
    return lines;
  }

  static void ExpectOnWire(Twin& twin, const std::vector<WireCase>& cases) {
    for (std::size_t i = 0; i < cases.size(); ++i) {
      EXPECT_TRUE(cases[i].call()) << "case " << i << ": error " << GetLastError();
      EXPECT_EQ(Wire(twin), cases[i].wire) << "case " << i;
    }
  }

  /// Each of the calls fails with ERROR_INVALID_PARAMETER.
  static void ExpectRefused(const std::vector<Call>& calls) {
    for (std::size_t i = 0; i < calls.size(); ++i) {
      EXPECT_EQ(ErrorOf(calls[i]()), 87U) << "call " << i;
    }
  }

  TestBus bus_;
  std::shared_ptr<Twin> twin_;  // of OpenOnly

 private:
  std::vector<std::shared_ptr<Twin>> plugged_;
  std::vector<HANDLE> open_;
};

}  // namespace vexa::test
