/// \file
/// The independent reader: libjpeg.
#pragma once

// jpeglib.h needs the first.
#include <cstdio>

#include <jpeglib.h>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

namespace vexa::test {

struct DecodedJpeg {
  unsigned width = 0;
  unsigned height = 0;
  int channels = 0;                  // 1 or 3 (BGR)
  std::vector<std::uint8_t> pixels;  // rows top first
  long warnings = 0;
  J_COLOR_SPACE color_space = JCS_UNKNOWN;
  bool jfif = false;
};

/// Reads a whole file; throws std::runtime_error with libjpeg's words when it cannot.
inline DecodedJpeg DecodeJpeg(std::span<const std::uint8_t> file) {
  struct Decompressor : jpeg_decompress_struct {
    Decompressor() : jpeg_decompress_struct{} {
      err = jpeg_std_error(&errors);
      errors.error_exit = [](j_common_ptr common) {
        char message[JMSG_LENGTH_MAX];
        common->err->format_message(common, message);
        throw std::runtime_error(message);
      };
      errors.output_message = [](j_common_ptr) {};  // warnings are counted
      jpeg_create_decompress(this);
    }
    ~Decompressor() { jpeg_destroy_decompress(this); }
    jpeg_error_mgr errors{};
  } decompressor;

  jpeg_mem_src(&decompressor, file.data(), file.size());
  jpeg_read_header(&decompressor, TRUE);
  decompressor.out_color_space = decompressor.num_components == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
  jpeg_start_decompress(&decompressor);
  DecodedJpeg decoded{.width = decompressor.output_width,
                      .height = decompressor.output_height,
                      .channels = decompressor.output_components,
                      .pixels = {},
                      .warnings = 0,
                      .color_space = decompressor.jpeg_color_space,
                      .jfif = decompressor.saw_JFIF_marker != 0};
  const std::size_t row_size =
      std::size_t{decoded.width} * static_cast<std::size_t>(decoded.channels);
  decoded.pixels.resize(row_size * decoded.height);
  while (decompressor.output_scanline < decompressor.output_height) {
    JSAMPROW row = &decoded.pixels[row_size * decompressor.output_scanline];
    jpeg_read_scanlines(&decompressor, &row, 1);
  }
  jpeg_finish_decompress(&decompressor);
  decoded.warnings = decompressor.errors.num_warnings;
  return decoded;
}

}  // namespace vexa::test
