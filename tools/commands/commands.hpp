/** The commands of the program. Each prints its results and returns the exit code; failures come
 * as exceptions. */
#pragma once

#include "errors.hpp"
#include "options.hpp"

namespace vexa::tool {

/** Prints a table of the cameras that are free. */
ExitCode RunList(const ListOptions& options);

/** Prints what a camera is and how it is set. */
ExitCode RunInfo(const InfoOptions& options);

/** Streams and saves frames. */
ExitCode RunCapture(const CaptureOptions& options);

/** Turns a frame's bytes into an image file; needs no camera. */
ExitCode RunConvert(const ConvertOptions& options);

/** Takes frames from files or a camera through image operations and saves them. */
ExitCode RunProcess(const ProcessOptions& options);

/** Streams until the automatic level control has settled, and prints its steps. */
ExitCode RunLevel(const LevelOptions& options);

/** Finds white balance and defect pixels. */
ExitCode RunCalibrate(const CalibrateOptions& options);

/** Streams and prints measurements. */
ExitCode RunStats(const StatsOptions& options);

/** Prints a table of the settings and actions that have a number. */
ExitCode RunParameters(const ParametersOptions& options);

/** Prints the value of a parameter, or of all that can be read. */
ExitCode RunGet(const GetOptions& options);

/** Sets a parameter and prints what the camera made of it, or carries out an action. */
ExitCode RunSet(const SetOptions& options);

/** Saves, loads and compares setting files. */
ExitCode RunSettings(const SettingsOptions& options);

/** Writes a command's results to the standard output. @throws ToolError when that fails. */
void Print(const std::string& text);

/** Writes notes about settings that differ from what was asked to the standard error. */
void PrintNotes(const std::vector<std::string>& notes);

}  // namespace vexa::tool
