#include "application.hpp"

#include <VexaAPI.h>

#include <exception>
#include <variant>

#include "commands/commands.hpp"
#include "options.hpp"
#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

std::string VersionText() {
  DWORD file_high = 0;
  DWORD file_low = 0;
  DWORD product_high = 0;
  DWORD product_low = 0;
  static_cast<void>(Vexa_GetDllVersion(&file_high, &file_low, &product_high, &product_low));
  const auto text = [](DWORD high, DWORD low) {
    const auto part = [](DWORD word) { return static_cast<unsigned>(word & 0xFFFFu); };
    return Format("%u.%u.%u.%u", part(high >> 16), part(high), part(low >> 16), part(low));
  };
  return "VexaAPI " + text(file_high, file_low) + " (product " + text(product_high, product_low) +
         ")";
}

struct Runner {
  ExitCode operator()(const Answer& answer) const {
    Print(answer.output);
    static_cast<void>(Write(Stream::kError, answer.error));
    return answer.exit_code;
  }
  ExitCode operator()(const ListOptions& options) const { return RunList(options); }
  ExitCode operator()(const InfoOptions& options) const { return RunInfo(options); }
  ExitCode operator()(const CaptureOptions& options) const { return RunCapture(options); }
  ExitCode operator()(const ConvertOptions& options) const { return RunConvert(options); }
  ExitCode operator()(const ProcessOptions& options) const { return RunProcess(options); }
  ExitCode operator()(const LevelOptions& options) const { return RunLevel(options); }
  ExitCode operator()(const CalibrateOptions& options) const { return RunCalibrate(options); }
  ExitCode operator()(const StatsOptions& options) const { return RunStats(options); }
  ExitCode operator()(const ParametersOptions& options) const { return RunParameters(options); }
  ExitCode operator()(const GetOptions& options) const { return RunGet(options); }
  ExitCode operator()(const SetOptions& options) const { return RunSet(options); }
  ExitCode operator()(const SettingsOptions& options) const { return RunSettings(options); }
};

ExitCode Report(ExitCode code, const std::string& message, const std::string& advice) {
  static_cast<void>(Write(
      Stream::kError, "vexa: " + message + "\n" + (advice.empty() ? "" : "  " + advice + "\n")));
  return code;
}

ExitCode RunChecked(const std::vector<std::string>& arguments) {
  try {
    return std::visit(Runner{}, ParseArguments(arguments, VersionText));
  } catch (const ToolError& error) {
    return Report(error.exit_code(), error.what(), error.advice());
  } catch (const std::bad_alloc&) {
    return Report(ExitCode::kFailure, "not enough memory", AdviceFor(8));
  } catch (const std::exception& error) {
    return Report(ExitCode::kFailure, error.what(), "");
  }
}

}  // namespace

void Print(const std::string& text) {
  if (!Write(Stream::kOutput, text)) {
    throw ToolError(ExitCode::kFailure, "the standard output takes no more",
                    "Check the free space where it is redirected to.");
  }
}

void PrintNotes(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) {
    static_cast<void>(Write(Stream::kError, "vexa: note: " + note + "\n"));
  }
}

int Run(const std::vector<std::string>& arguments) {
  CatchInterrupts();
  return static_cast<int>(RunChecked(arguments));
}

}  // namespace vexa::tool
