// File names of frames, and what is saved under them.

#include <VexaAPI.h>
#include <gmock/gmock.h>

#include <fstream>

#include "errors.hpp"
#include "output_pattern.hpp"
#include "save_plan.hpp"

namespace vexa::tool {
namespace {

using Content = SavePlan::Content;

TEST(OutputPattern, NamesEveryFrame) {
  const struct {
    const char* pattern;
    std::uint32_t frames;
    std::uint32_t index;
    const char* path;
    FileType type;
  } kCases[] = {
      {"a.bmp", 2, 2, "a-0002.bmp", FileType::kBitmap},
      {"dir.d/a.b.RAW", 100000, 7, "dir.d/a.b-000007.RAW", FileType::kRaw},
      {"%03d.dib", 1, 1, "001.dib", FileType::kBitmap},
      {"x%03d-y.bmp", 2000, 1234, "x1234-y.bmp", FileType::kBitmap},
      {"%05d/a.tif", 3, 2, "00002/a.tif", FileType::kTiff},
      {"100%%.bmp", 1, 1, "100%.bmp", FileType::kBitmap},
      {"100%%.bmp", 9, 9, "100%-0009.bmp", FileType::kBitmap},
      {"%%%d%%d.jpg", 9, 9, "%9%d.jpg", FileType::kJpeg},
      {"Größe \xF0\x9F\x93\xB7.bmp", 3, 1, "Größe \xF0\x9F\x93\xB7-0001.bmp", FileType::kBitmap},
  };
  for (const auto& test_case : kCases) {
    const OutputPattern pattern(test_case.pattern, test_case.frames);
    EXPECT_EQ(Utf8FromPath(pattern.PathOf(test_case.index)), test_case.path);
    EXPECT_EQ(pattern.type(), test_case.type) << test_case.pattern;
  }
}

TEST(OutputPattern, RefusesWhatCannotNameTheFrames) {
  for (const char* pattern :
       {"", ".", "a", "a.", ".bmp", "dir.bmp/a", "a.png", "a.%d", "%d-%d.bmp", "%s.bmp", "%4d.bmp",
        "%00d.bmp", "%04x.bmp", "%n.bmp", "a%.bmp", "a.bmp%", "%05", "\xFF.bmp", "a\xC3.bmp"}) {
    try {
      const OutputPattern accepted(pattern, 3);
      ADD_FAILURE() << pattern << " became " << accepted.PathOf(1);
    } catch (const ToolError& error) {
      EXPECT_EQ(error.exit_code(), ExitCode::kUsage) << pattern;
      EXPECT_NE(error.advice(), "") << pattern;
    }
  }
}

TEST(OutputPattern, FindsAnyFileInTheWay) {
  const auto folder = std::filesystem::path(testing::TempDir()) / "vexa_output_pattern";
  std::filesystem::create_directories(folder);
  const OutputPattern pattern(Utf8FromPath(folder / "%d.bmp"), 10);
  std::filesystem::remove(pattern.PathOf(10));
  std::ofstream(folder / "11.bmp") << "beyond the frames asked for";
  EXPECT_FALSE(pattern.FirstExisting());
  std::ofstream(pattern.PathOf(10)) << "in the way";
  EXPECT_EQ(pattern.FirstExisting(), pattern.PathOf(10));
  std::filesystem::remove_all(folder);
}

TEST(SavePlan, FollowsFileTypeFormatAndSensor) {
  const std::optional<std::uint8_t> none;
  const struct {
    FileType type;
    std::uint32_t format;
    std::uint16_t color_array;
    std::optional<std::uint8_t> method;
    std::optional<Content> content;  // nothing: refused
  } kCases[] = {
      {FileType::kBitmap, VEXA_TRANSFER_8BIT, VEXA_COLOR_ARRAY_RGGB, none, Content::kInterpolate},
      {FileType::kBitmap, VEXA_TRANSFER_8BIT_B, VEXA_COLOR_ARRAY_BGGR, 0, Content::kInterpolate},
      {FileType::kBitmap, VEXA_TRANSFER_8BIT, VEXA_COLOR_ARRAY_MONO, none, Content::kGrey},
      {FileType::kBitmap, VEXA_TRANSFER_BGR24, VEXA_COLOR_ARRAY_RGGB, none, Content::kColor},
      {FileType::kBitmap, VEXA_TRANSFER_BGR24, VEXA_COLOR_ARRAY_RGGB, 3, std::nullopt},
      {FileType::kBitmap, VEXA_TRANSFER_12BIT, VEXA_COLOR_ARRAY_MONO, none, std::nullopt},
      {FileType::kBitmap, 0x8000, VEXA_COLOR_ARRAY_RGGB, none, std::nullopt},
      {FileType::kTiff, VEXA_TRANSFER_16BIT, VEXA_COLOR_ARRAY_RGGB, none, Content::kDeep},
      {FileType::kTiff, VEXA_TRANSFER_10BIT_B, VEXA_COLOR_ARRAY_RGGB, 3, std::nullopt},
      {FileType::kTiff, VEXA_TRANSFER_8BIT, VEXA_COLOR_ARRAY_RGGB, none, Content::kInterpolate},
      {FileType::kJpeg, VEXA_TRANSFER_16BIT, VEXA_COLOR_ARRAY_MONO, none, std::nullopt},
      {FileType::kRaw, VEXA_TRANSFER_12BIT, VEXA_COLOR_ARRAY_RGGB, none, Content::kBytes},
      {FileType::kRaw, VEXA_TRANSFER_YUV411, VEXA_COLOR_ARRAY_RGGB, none, Content::kBytes},
      {FileType::kRaw, VEXA_TRANSFER_8BIT, VEXA_COLOR_ARRAY_RGGB, 3, std::nullopt},
  };
  for (const auto& test_case : kCases) {
    SCOPED_TRACE(test_case.format);
    const auto plan = [&] {
      return PlanSaving(test_case.type, test_case.format, test_case.color_array, test_case.method);
    };
    if (test_case.content) {
      EXPECT_EQ(plan().content, *test_case.content);
      EXPECT_EQ(plan().method, plan().content == Content::kInterpolate
                                   ? test_case.method.value_or(VEXA_INTERP_BILINEAR)
                                   : 0);
    } else {
      EXPECT_THROW(static_cast<void>(plan()), ToolError);
    }
  }
}

}  // namespace
}  // namespace vexa::tool
