#include "image_writer.hpp"

#include <VexaAPI.h>

#include <limits>
#include <system_error>
#include <utility>

#include "errors.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr DWORD kNotSupported = 50;
constexpr DWORD kJpegCompression = 10;  // quality 90

void Save(std::uint32_t width, std::uint32_t height, std::uint32_t pixel_format, const BYTE* image,
          const std::filesystem::path& path) {
  const std::u16string name = path.u16string();
  const std::basic_string<WCHAR> file_name(name.begin(), name.end());
  if (Vexa_SaveImageW(width, height, pixel_format, image, file_name.c_str(), kJpegCompression) ==
      0) {
    const DWORD code = GetLastError();
    throw ApiError(
        "Vexa_SaveImageW(\"" + Utf8FromPath(path) + "\")", code,
        code == kNotSupported
            ? "This version of the library does not write that file type; use .bmp or .raw."
            : "");
  }
}

/** The library does not check the writing of raw and TIFF files: a full disk shows only in the
 * file's size. @param least bytes that a whole file has at least. */
void CheckSize(const std::filesystem::path& path, std::uintmax_t least) {
  std::error_code error;
  const std::uintmax_t written = std::filesystem::file_size(path, error);
  if (error || written < least) {
    throw ToolError(ExitCode::kFailure,
                    Format("\"%s\" is incomplete: %ju of %ju bytes were written",
                           Utf8FromPath(path).c_str(), error ? std::uintmax_t{0} : written, least),
                    "Check the free space of the disk.");
  }
}

void SaveBytes(const StoredFrame& frame, const std::filesystem::path& path) {
  if (frame.size > std::numeric_limits<std::uint32_t>::max()) {
    throw ToolError(ExitCode::kFailure, "the frame is too large to be saved",
                    "Choose a smaller region with --roi.");
  }
  Save(static_cast<std::uint32_t>(frame.size), 1, VEXA_OUTPUT_MONO8, frame.pixels.data(), path);
}

void SaveInterpolated(const StoredFrame& frame, std::uint8_t method,
                      const std::filesystem::path& path, std::vector<BYTE>& color) {
  color.resize(ImageMemory(frame.description.width, frame.description.height, VEXA_TRANSFER_BGR24));
  if (Vexa_ColorInterpolation(frame.description.width, frame.description.height,
                              frame.description.color_array, frame.pixels.data(), color.data(),
                              method, VEXA_OUTPUT_BGR24) == 0) {
    throw ApiError("Vexa_ColorInterpolation", GetLastError(),
                   "Choose another --method or a larger region: the methods need up to 6 x 6 "
                   "pixels.");
  }
  Save(frame.description.width, frame.description.height, VEXA_OUTPUT_BGR24, color.data(), path);
}

}  // namespace

void SaveFrame(const StoredFrame& frame, const SavePlan& plan, const std::filesystem::path& path,
               std::vector<BYTE>& color) {
  switch (plan.content) {
    case SavePlan::Content::kBytes:
      SaveBytes(frame, path);
      break;
    case SavePlan::Content::kGrey:
      Save(frame.description.width, frame.description.height, VEXA_OUTPUT_MONO8,
           frame.pixels.data(), path);
      break;
    case SavePlan::Content::kInterpolate:
      SaveInterpolated(frame, plan.method, path, color);
      break;
    case SavePlan::Content::kColor:
      Save(frame.description.width, frame.description.height, VEXA_OUTPUT_BGR24,
           frame.pixels.data(), path);
      break;
    case SavePlan::Content::kDeep:
      Save(frame.description.width, frame.description.height, plan.deep_format, frame.pixels.data(),
           path);
      break;
  }
  const FileType type = FileTypeOf(path, "the file name");
  if (type == FileType::kRaw || type == FileType::kTiff) {  // both hold the frame's bytes or more
    CheckSize(path, frame.size);
  }
}

ImageWriter::ImageWriter(FramePool& pool, Save save)
    : pool_(pool), save_(std::move(save)), thread_([this] { Run(); }) {}

ImageWriter::~ImageWriter() {
  pool_.Close();
  if (thread_.joinable()) {
    thread_.join();
  }
}

void ImageWriter::Finish() {
  pool_.Close();
  thread_.join();
  if (failure_) {
    std::rethrow_exception(failure_);
  }
}

void ImageWriter::Run() {
  while (StoredFrame* frame = pool_.Take()) {
    if (!failed_) {
      try {
        save_(*frame);
        saved_ += 1;
      } catch (...) {
        failure_ = std::current_exception();
        failed_ = true;
      }
    }
    pool_.Release(frame);
  }
}

}  // namespace vexa::tool
