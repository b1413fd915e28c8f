#include "errors.hpp"

#include <VexaAPI.h>

#include <utility>

#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

struct CodeText {
  std::uint32_t code;
  const char* text;
  const char* advice;
};

constexpr const char* kReconnect =
    "Check the cable and the camera's power, unplug the camera and plug it in again.";
constexpr const char* kCloseOthers = "Close other programs that use the camera.";

constexpr CodeText kCodes[] = {
    {2, "file not found", "Check the path."},
    {3, "path not found", "Check that the folder exists."},
    {5, "access denied, or the camera is gone", kReconnect},
    {8, "not enough memory", "Close other programs, or choose a smaller region or format."},
    {22, "the device does not recognise the command", ""},
    {29, "write fault: the file is incomplete", "Check the free space of the disk."},
    {31, "a device is not functioning", kReconnect},
    {50, "not supported", ""},
    {87, "invalid parameter",
     "The value is out of range, or the camera model lacks the function; \"vexa info\" shows what "
     "the camera has."},
    {110, "the file cannot be opened",
     "Check that the folder exists, that you may write to it, and that no other program has the "
     "file open."},
    {121, "time-out of the device", kReconnect},
    {122, "the buffer is too small", ""},
    {170, "the camera is in use", kCloseOthers},
    {258, "time-out", ""},
    {259, "no further camera is free",
     "Connect a camera and check its driver; a camera that another program uses is not free."},
    {995, "the operation was aborted", kReconnect},
    {1117, "input/output error of the device", kReconnect},
    {1131, "a callback tried to stop its own camera", ""},
    {1167, "the camera is not connected", kReconnect},
    {VEXA_RCV_HEADER_SIZE, "a frame header had the wrong size", ""},
    {VEXA_RCV_FRAME_SIZE, "a frame had the wrong size and is lost", ""},
    {VEXA_RCV_TIMEOUT_ST2EE, "no frame after a software trigger", ""},
    {VEXA_RCV_TIMEOUT_TE2EE, "no hardware trigger in time", ""},
    {VEXA_RCV_TIMEOUT_EE2TE, "no image after its header", ""},
    {VEXA_RCV_TIMEOUT_RO2TE, "no image after the read-out trigger", ""},
};

const CodeText* Find(std::uint32_t code) {
  for (const CodeText& entry : kCodes) {
    if (entry.code == code) {
      return &entry;
    }
  }
  return nullptr;
}

}  // namespace

ToolError::ToolError(ExitCode exit_code, const std::string& message, std::string advice)
    : std::runtime_error(message), exit_code_(exit_code), advice_(std::move(advice)) {}

ApiError::ApiError(const std::string& call, std::uint32_t code, std::string advice)
    : ToolError(ExitCode::kFailure, call + " failed: " + DescribeCode(code),
                advice.empty() ? AdviceFor(code) : std::move(advice)),
      code_(code) {}

std::string DescribeCode(std::uint32_t code) {
  const std::string number = code < 0x80000000u ? Format("%u", code) : Format("0x%08X", code);
  const CodeText* entry = Find(code);
  std::string text = entry != nullptr ? entry->text : SystemErrorText(code);
  if (text.empty()) {
    text = "no description known";
  }
  return number + " (" + text + ")";
}

std::string AdviceFor(std::uint32_t code) {
  const CodeText* entry = Find(code);
  return entry != nullptr ? entry->advice : std::string();
}

}  // namespace vexa::tool
