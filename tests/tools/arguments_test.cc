// The command line: what is refused, and what it comes to.

#include <VexaAPI.h>
#include <gmock/gmock.h>

#include <iterator>
#include <sstream>

#include "options.hpp"

namespace vexa::tool {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

ParsedArguments Parse(const std::vector<std::string>& arguments) {
  return ParseArguments(arguments, [] { return "VexaAPI 1.2.3.4"; });
}

TEST(Arguments, RefusesWhatIsWrongAndSaysWhat) {
  const struct {
    std::vector<std::string> arguments;
    const char* says;
  } kCases[] = {
      {{}, "a command is required"},
      {{"snap"}, "\"snap\" is not understood"},
      {{"info", "--frames", "3"}, "vexa info --help"},
      {{"--json", "list"}, "--json"},
      {{"info", "--camera", "-1"}, "-1"},
      {{"info", "--camera", "256"}, "256"},
      {{"capture", "--frames", "0"}, "0"},
      {{"capture", "--frames", "4294967297"}, "4294967297"},  // 1 when cut to 32 bits
      {{"capture", "--exposure-ms", "nan"}, "nan"},
      {{"capture", "--exposure-ms", "0"}, "--exposure-ms"},
      {{"capture", "--exposure-ms", "1e99"}, "1e99"},
      {{"capture", "--exposure-ms", "5ms"}, "5ms"},
      {{"capture", "--roi", "0,0,640"}, "four numbers"},
      {{"capture", "--roi", "0,0,640,480,1"}, "four numbers"},
      {{"capture", "--roi", "0,0,-640,480"}, "\"-640\""},
      {{"capture", "--roi", "0,,640,480"}, "\"\""},
      {{"capture", "--roi", "0,0,4294967296,480"}, "4294967296"},
      {{"capture", "--roi", "0,0,640,0"}, "at least 1"},
      {{"capture", "--scan-mode", "0x10000"}, "0x10000"},
      {{"capture", "--format", "13bit"}, "8bit, 10bit"},
      {{"capture", "--format", "0"}, "8bit, 10bit"},
      {{"capture", "--method", "bicubic"}, "four-tap"},
      {{"capture", "--timeout", "-1"}, "-1"},
      {{"convert", "a.raw"}, "OUTPUT"},
      {{"convert", "a.raw", "a.bmp", "--width", "4"}, "--height"},
      {{"convert", "a.raw", "a.bmp", "--width", "65536", "--height", "1"}, "65536"},
      {{"convert", "a.raw", "a.bmp", "--color-array", "rgb"}, "GBRG"},
      {{"process", "a.raw"}, "--width: missing"},
      {{"process", "--color-array", "rggb"}, "no file is named"},
      {{"process", "a.raw", "--width", "4", "--height", "4", "-n", "2"}, "files are named"},
      {{"process", "--white-balance", "auto,1,1"}, "128 changes nothing"},
      {{"process", "--white-balance", "1,2"}, "three or four gains"},
      {{"process", "--white-balance", "128,,128"}, "\"\""},
      {{"process", "--white-balance", "65536,1,1"}, "65536"},
      {{"process", "--white-balance", "1,1,1", "--grey-area", "0,0,4,4"}, "auto or once"},
      {{"process", "--matrix", "1,0,0,0,1,0,0,0"}, "9 numbers"},
      {{"process", "--matrix", "1,0,0,0,1,0,0,0,nan"}, "\"nan\""},
      {{"process", "--mirror", "up"}, "antidiagonal"},
      {{"process", "--rotate", "45"}, "90"},
      {{"process", "--coring", "3"}, "--sharpen"},
      {{"process", "--contrast", "128"}, "127"},
      {{"level", "--mode", "7"}, "--mode"},
      {{"stats", "--seconds", "0"}, "--seconds"},
  };
  for (const auto& test_case : kCases) {
    const ParsedArguments parsed = Parse(test_case.arguments);
    const Answer* answer = std::get_if<Answer>(&parsed);
    ASSERT_NE(answer, nullptr) << test_case.says;
    EXPECT_EQ(answer->exit_code, ExitCode::kUsage) << answer->output;
    EXPECT_THAT(answer->error, HasSubstr(test_case.says));
    EXPECT_EQ(answer->output, "");
  }
}

TEST(Arguments, CollectsTheSettingsOfACapture) {
  std::istringstream line(
      "capture -c 1 -n 20 --roi 8,16,640,480 --exposure-ms 2.5 --scan-mode 0x8000 --format 12BIT "
      "--method cell-centred --timeout 0 --overwrite -q -o");
  std::vector<std::string> arguments(std::istream_iterator<std::string>(line), {});
  arguments.push_back("späte Bilder/%d.raw");
  const ParsedArguments parsed = Parse(arguments);
  const auto& options = std::get<CaptureOptions>(parsed);
  const SettingOptions& settings = options.stream.settings;
  EXPECT_EQ(options.stream.camera, 1u);
  EXPECT_EQ(options.frames, 20u);
  ASSERT_TRUE(settings.region);
  EXPECT_EQ(settings.region->x, 8u);
  EXPECT_EQ(settings.region->y, 16u);
  EXPECT_EQ(settings.region->width, 640u);
  EXPECT_EQ(settings.region->height, 480u);
  EXPECT_EQ(settings.exposure_ms, 2.5);
  EXPECT_EQ(settings.scan_mode, 0x8000);
  EXPECT_EQ(settings.format, VEXA_TRANSFER_12BIT);
  EXPECT_EQ(options.method, VEXA_INTERP_CELL_CENTRED);
  EXPECT_EQ(options.stream.timeout_s, 0.0);
  EXPECT_EQ(options.output, "späte Bilder/%d.raw");
  EXPECT_TRUE(options.overwrite && options.stream.quiet);

  const auto untouched = std::get<StatsOptions>(Parse({"stats"})).stream;
  EXPECT_FALSE(untouched.settings.region || untouched.settings.exposure_ms ||
               untouched.settings.scan_mode || untouched.settings.format || untouched.timeout_s);
  EXPECT_EQ(
      std::get<CaptureOptions>(Parse({"capture", "--format", "0x0400"})).stream.settings.format,
      VEXA_TRANSFER_BGR24);
}

TEST(Arguments, CollectsTheStepsOfAProcessing) {
  const auto steps = [](const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"process"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return std::get<ProcessOptions>(Parse(all)).steps;
  };
  const Gains three = steps({"--white-balance", "90,128,0"}).white_balance->gains;
  EXPECT_EQ(std::tuple(three.red, three.green_red, three.green_blue, three.blue),
            std::tuple(90, 128, 128, 0));
  const Gains four = steps({"--white-balance", "1,2,3,65535"}).white_balance->gains;
  EXPECT_EQ(std::tuple(four.red, four.green_red, four.green_blue, four.blue),
            std::tuple(1, 2, 3, 65535));
  EXPECT_THAT(*steps({"--matrix", "1,-.5,0,0,1,0,0,.005,1"}).matrix,
              ElementsAre(100, -50, 0, 0, 0, 100, 0, 0, 0, 1, 100, 0));
  EXPECT_THAT(*steps({"--matrix", "1,2,3,4,5,6,7,8,9,10,11,-327.67"}).matrix,
              ElementsAre(100, 200, 300, 400, 500, 600, 700, 800, 900, 1000, 1100, -32767));
}

TEST(Arguments, HelpAndVersionSucceed) {
  const struct {
    std::vector<std::string> arguments;
    const char* says;
  } kCases[] = {{{"--version"}, "VexaAPI 1.2.3.4"},
                {{"--help"}, "3  no camera could be opened"},
                {{"capture", "--help"}, "%04d"},
                {{"stats", "--help"}, "median"}};
  for (const auto& test_case : kCases) {
    const Answer answer = std::get<Answer>(Parse(test_case.arguments));
    EXPECT_EQ(answer.exit_code, ExitCode::kSuccess);
    EXPECT_THAT(answer.output, HasSubstr(test_case.says));
    EXPECT_EQ(answer.error, "");
  }
}

}  // namespace
}  // namespace vexa::tool
