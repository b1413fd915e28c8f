#include "parameters.hpp"

#include <vector>

#include "camera.hpp"
#include "commands.hpp"
#include "report.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

std::string HexId(const Parameter& parameter) {
  return Format("0x%04X", static_cast<unsigned>(parameter.id));
}

void PrintValue(const Camera& camera, const Parameter& parameter) {
  Print(std::string(parameter.name) + " = " + ReadParameter(camera, parameter) + "\n");
}

}  // namespace

ExitCode RunParameters(const ParametersOptions& options) {
  Json list = Json::array();
  std::vector<std::vector<std::string>> rows = {
      {"ID", "NAME", "ACCESS", "RANGE", "UNIT", "DESCRIPTION"}};
  for (const Parameter& parameter : Parameters()) {
    rows.push_back({HexId(parameter), parameter.name, AccessOf(parameter), RangeOf(parameter),
                    parameter.unit, parameter.what});
    list.push_back({{"id", parameter.id},
                    {"name", parameter.name},
                    {"access", AccessOf(parameter)},
                    {"range", RangeOf(parameter)},
                    {"unit", parameter.unit},
                    {"description", parameter.what}});
  }
  Print(options.json ? Dump(list) : FormatTable(rows));
  return ExitCode::kSuccess;
}

ExitCode RunGet(const GetOptions& options) {
  if (options.parameter.empty()) {
    const Camera camera = OpenCamera(options.camera);
    for (const Parameter& parameter : Parameters()) {
      if (parameter.readable) {
        PrintValue(camera, parameter);
      }
    }
    return ExitCode::kSuccess;
  }
  const Parameter& parameter = FindParameter(options.parameter);
  PrintValue(OpenCamera(options.camera), parameter);
  return ExitCode::kSuccess;
}

ExitCode RunSet(const SetOptions& options) {
  const Parameter& parameter = FindParameter(options.parameter);
  const Camera camera = OpenCamera(options.camera);
  WriteParameter(camera, parameter, options.value);
  if (parameter.readable) {
    PrintValue(camera, parameter);  // what the camera made of it
  }
  return ExitCode::kSuccess;
}

}  // namespace vexa::tool
