#include "option_parts.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "names.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr std::uint32_t kMaxSide = 65'535;  // of a frame; camera and file formats have 16 bits

std::uint32_t ParseNumber(std::string_view text) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("\"" + std::string(text) + "\" is not a whole number from 0");
  }
  return number;
}

void AddSettingOptions(CLI::App& app, SettingOptions& settings) {
  app.add_option("--exposure-ms", settings.exposure_ms, "Exposure time in milliseconds")
      ->type_name("X")
      ->check(NumberIn(1e-6, 3.6e6).description(""));
  AddParsed(
      app, "--roi", [&settings](const std::string& text) { settings.region = ParseRegion(text); },
      "Region of interest in pixels")
      ->type_name("X,Y,W,H");
  app.add_option("--scan-mode", settings.scan_mode, "Scan mode code, such as 0x0001")
      ->type_name("M");
  AddFormatOption(app, settings.format, "Transfer format: 8bit, 12bit, bgr24 ... or its code");
}

}  // namespace

CLI::Validator NumberIn(double low, double high) {
  const std::string range = Format("%g to %g", low, high);
  return {[low, high, range](std::string& text) {
            double number = 0;
            const bool valid = CLI::detail::lexical_cast(text, number) && std::isfinite(number) &&
                               number >= low && number <= high;
            return valid ? std::string() : "\"" + text + "\" is not a number from " + range;
          },
          "NUMBER"};
}

CLI::Option* AddParsed(CLI::App& app, const std::string& name,
                       std::function<void(const std::string&)> parse,
                       const std::string& description) {
  return app.add_option_function<std::string>(
      name,
      [name, parse](const std::string& text) {
        try {
          parse(text);
        } catch (const std::invalid_argument& error) {
          throw CLI::ValidationError(name, error.what());
        }
      },
      description);
}

void AddCameraOption(CLI::App& app, std::uint32_t& camera) {
  app.add_option("-c,--camera", camera, "Index of the camera, from 0 (default 0)")
      ->type_name("I")
      ->check(CLI::Range(0u, 255u).description(""));
}

void AddFormatOption(CLI::App& app, std::optional<std::uint32_t>& format,
                     const std::string& description) {
  AddParsed(
      app, "--format",
      [&format](const std::string& text) {
        format = ParseTransferFormat(text);
        if (!format) {
          throw std::invalid_argument(
              "\"" + text + "\" is no transfer format; known: " + TransferFormatNames(~0u));
        }
      },
      description)
      ->type_name("CODE");
}

void AddColorArrayOption(CLI::App& app, std::optional<std::uint16_t>& color_array) {
  AddParsed(
      app, "--color-array",
      [&color_array](const std::string& text) {
        color_array = ParseColorArray(text);
        if (!color_array) {
          throw std::invalid_argument("\"" + text +
                                      "\" is no colour array; known: mono, RGGB, GRBG, GBRG, BGGR");
        }
      },
      "Colour filters of the first rows: mono (default), rggb, grbg, gbrg, bggr")
      ->type_name("NAME");
}

void AddMethodOption(CLI::App& app, std::optional<std::uint8_t>& method_code) {
  AddParsed(
      app, "--method",
      [&method_code](const std::string& text) {
        std::string known;
        for (const NamedCode& method : InterpolationMethods()) {
          if (text == method.name) {
            method_code = static_cast<std::uint8_t>(method.code);
            return;
          }
          known += (known.empty() ? "" : ", ") + std::string(method.name);
        }
        throw std::invalid_argument("\"" + text + "\" is no method; known: " + known);
      },
      "Colour interpolation (default bilinear)")
      ->type_name("NAME");
}

CLI::Option* AddSideOption(CLI::App& app, const std::string& name, std::uint32_t& side,
                           const std::string& description) {
  return app.add_option(name, side, description)
      ->type_name("N")
      ->check(CLI::Range(1u, kMaxSide).description(""));
}

void AddStreamOptions(CLI::App& app, StreamOptions& options) {
  AddCameraOption(app, options.camera);
  AddSettingOptions(app, options.settings);
  app.add_option("--timeout", options.timeout_s, "Longest wait for a frame in seconds, 0: no limit")
      ->type_name("S")
      ->check(NumberIn(0, 86400).description(""));
  app.add_flag("-q,--quiet", options.quiet, "No progress and no summary");
}

Region ParseRegion(std::string_view text) {
  std::array<std::uint32_t, 4> numbers{};
  std::size_t count = 0;
  for (std::string_view rest = text;; ++count) {
    const std::size_t comma = rest.find(',');
    if (count == numbers.size()) {
      throw std::invalid_argument("a region has four numbers: X,Y,W,H");
    }
    numbers[count] = ParseNumber(rest.substr(0, comma));
    if (comma == std::string_view::npos) {
      break;
    }
    rest.remove_prefix(comma + 1);
  }
  if (count + 1 != numbers.size()) {
    throw std::invalid_argument("a region has four numbers: X,Y,W,H");
  }
  if (numbers[2] == 0 || numbers[3] == 0) {
    throw std::invalid_argument("width and height of a region are at least 1");
  }
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

}  // namespace vexa::tool
