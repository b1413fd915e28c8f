/// \file
/// Cameras of the test's own, driven through the exports.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "VexaAPI.h"
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

class CameraTest : public ::testing::Test {
 protected:
  CameraTest() { SetLastError(0); }

  ~CameraTest() override {
    for (HANDLE camera : open_) {
      Vexa_Close(camera);
    }
  }

  std::shared_ptr<Twin> Plug(simulator::CameraConfig config) { return bus_.Add(std::move(config)); }

  std::shared_ptr<Twin> Plug(std::uint16_t product_id = 0x0510) {
    return Plug(simulator::ForProduct(product_id));
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

  void Close(HANDLE camera) {
    std::erase(open_, camera);
    Vexa_Close(camera);
  }

  /// The control requests that reached the camera since the last call.
  static std::vector<std::string> Wire(Twin& twin) {
    std::vector<std::string> lines;
    for (const simulator::LoggedRequest& entry : twin.Log()) {
      if (entry.code == platform::ControlCode::kControlRequest) {
        lines.push_back(Line(entry));
      }
    }
    twin.ClearLog();
    return lines;
  }

  TestBus bus_;

 private:
  std::vector<HANDLE> open_;
};

}  // namespace vexa::test
