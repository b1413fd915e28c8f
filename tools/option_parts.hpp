/** Options that several commands have, and the forms of their values. */
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "options.hpp"

namespace vexa::tool {

/** Most frames of one command. */
inline constexpr std::uint32_t kMaxFrames = 1'000'000;

/** A finite number in a range; not a number is none. */
CLI::Validator NumberIn(double low, double high);

/** Adds an option whose text a function turns into the value; its std::invalid_argument becomes a
 * usage error. */
CLI::Option* AddParsed(CLI::App& app, const std::string& name,
                       std::function<void(const std::string&)> parse,
                       const std::string& description);

/** -c, --camera. */
void AddCameraOption(CLI::App& app, std::uint32_t& camera);

/** --format, with any name or number of a transfer format. */
void AddFormatOption(CLI::App& app, std::optional<std::uint32_t>& format,
                     const std::string& description);

/** --color-array. */
void AddColorArrayOption(CLI::App& app, std::optional<std::uint16_t>& color_array);

/** --method. */
void AddMethodOption(CLI::App& app, std::optional<std::uint8_t>& method);

/** Width or height of frames in files. */
CLI::Option* AddSideOption(CLI::App& app, const std::string& name, std::uint32_t& side,
                           const std::string& description);

/** The options of the commands that stream. */
void AddStreamOptions(CLI::App& app, StreamOptions& options);

/** The options of "vexa process". */
void AddProcess(CLI::App& app, ProcessOptions& options);

}  // namespace vexa::tool
