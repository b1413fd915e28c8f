#include "output/jpeg/jpeg_encoder.hpp"

#include <algorithm>

#include "output/jpeg/typical_tables.hpp"

namespace vexa::output {
namespace {

constexpr std::int32_t kMcuWidth = 16;  // pixels
constexpr std::int32_t kMcuHeight = 8;
constexpr std::int32_t kOutputBufferSize = 4096;

bool Failed(CodingStatus status) { return status != CodingStatus::kOk; }

}  // namespace

CodingStatus CJPEGEncoder::SetSource(const std::uint8_t* pixels, std::int32_t line_step,
                                     std::int32_t width, std::int32_t height, std::int32_t channels,
                                     SourceColor color, std::int32_t sub_sampling,
                                     std::int32_t precision) {
  source_ = {.pixels = pixels,
             .line_step = line_step,
             .width = width,
             .height = height,
             .channels = channels,
             .color = color,
             .sub_sampling = sub_sampling,
             .precision = precision};
  stage_ = Stage::kEmpty;
  return CodingStatus::kOk;
}

CodingStatus CJPEGEncoder::SetDestination(CBaseStreamOutput* stream) { return out_.Attach(stream); }

CodingStatus CJPEGEncoder::SetParams(JpegMode mode, JpegColor color, JpegSampling sampling,
                                     std::int32_t restart_interval, bool optimise_huffman,
                                     std::int32_t quality) {
  stage_ = Stage::kEmpty;
  if (mode != JpegMode::kBaseline || sampling != JpegSampling::kHalfChrominance ||
      restart_interval != 0 || optimise_huffman || !IsSourceValid(color)) {
    return CodingStatus::kOutOfRange;
  }
  component_count_ = color == JpegColor::kGrey ? 1 : 3;
  table_count_ = color == JpegColor::kGrey ? 1 : 2;
  SetGeometry();
  ConfigureComponents();
  const CodingStatus status = PrepareTables(quality);
  if (!Failed(status)) {
    stage_ = Stage::kParametersSet;
  }
  return status;
}

bool CJPEGEncoder::IsSourceValid(JpegColor color) const {
  const auto is_side = [](std::int32_t side) { return side >= 1 && side <= kLongestJpegSide; };
  const bool is_grey =
      color == JpegColor::kGrey && source_.color == SourceColor::kGrey && source_.channels == 1;
  const bool is_colour = color == JpegColor::kYCbCr && source_.color == SourceColor::kBgr &&
                         (source_.channels == 3 || source_.channels == 4);
  return (is_grey || is_colour) && source_.pixels != nullptr && is_side(source_.width) &&
         is_side(source_.height) && source_.line_step >= source_.width * source_.channels &&
         source_.sub_sampling == 0 && source_.precision == 8;
}

void CJPEGEncoder::SetGeometry() {
  mcus_per_row_ = (source_.width + kMcuWidth - 1) / kMcuWidth;
  mcu_rows_ = (source_.height + kMcuHeight - 1) / kMcuHeight;
  padded_width_ = mcus_per_row_ * kMcuWidth;
}

void CJPEGEncoder::ConfigureComponents() {
  components_[0].Configure({.identifier = 0, .h = 2});
  blocks_per_mcu_ = components_[0].blocks_per_mcu();
  for (std::uint8_t i = 1; i < component_count_; ++i) {
    components_[i].Configure(
        {.identifier = i, .horizontal_factor = 2, .quant_table = 1, .dc_table = 1, .ac_table = 1});
    blocks_per_mcu_ += components_[i].blocks_per_mcu();
  }
}

CodingStatus CJPEGEncoder::PrepareTables(std::int32_t quality) {
  const QuantValues* const quant[] = {&kLuminanceQuant, &kChrominanceQuant};
  const HuffmanLists* const dc[] = {&kLuminanceDc, &kChrominanceDc};
  const HuffmanLists* const ac[] = {&kLuminanceAc, &kChrominanceAc};
  const auto prepare = [](CJPEGEncoderHuffmanTable& table, std::uint8_t identifier,
                          HuffmanClass table_class, const HuffmanLists& lists) {
    const CodingStatus status = table.Create();
    return Failed(status) ? status
                          : table.Init(identifier, table_class, lists.counts, lists.values);
  };
  for (std::uint8_t i = 0; i < table_count_; ++i) {
    CodingStatus status = quant_tables_[i].Init(i, *quant[i], quality);
    if (!Failed(status)) {
      status = prepare(dc_tables_[i], i, HuffmanClass::kDc, *dc[i]);
    }
    if (!Failed(status)) {
      status = prepare(ac_tables_[i], i, HuffmanClass::kAc, *ac[i]);
    }
    if (Failed(status)) {
      return status;
    }
  }
  return CodingStatus::kOk;
}

CodingStatus CJPEGEncoder::AllocateMemory() {
  for (CJPEGColorComponent& component : components()) {
    const CodingStatus status = component.Allocate(kMcuHeight, padded_width_);
    if (Failed(status)) {
      return status;
    }
  }
  constexpr std::int32_t kCoefficientBytes = kBlockSize * sizeof(std::int16_t);
  CodingStatus status = coefficients_.Allocate(mcus_per_row_ * blocks_per_mcu_ * kCoefficientBytes);
  if (!Failed(status)) {
    status = out_.Init(kOutputBufferSize);
  }
  return Failed(status) ? status : huffman_state_.Create();
}

CodingStatus CJPEGEncoder::WriteHeader() {
  if (stage_ == Stage::kEmpty) {
    return CodingStatus::kOutOfRange;
  }
  stage_ = Stage::kParametersSet;
  CodingStatus status = AllocateMemory();
  const auto then = [&status](auto&& write) {
    if (!Failed(status)) {
      status = write();
    }
  };
  then([&] { return WriteStartOfImage(out_); });
  then([&] { return WriteJfifHeader(out_); });
  for (std::size_t i = 0; i < table_count_; ++i) {
    then([&] { return WriteQuantTable(out_, quant_tables_[i]); });
  }
  then([&] {
    return WriteFrameHeader(out_, static_cast<std::uint16_t>(source_.width),
                            static_cast<std::uint16_t>(source_.height),
                            static_cast<std::uint8_t>(source_.precision), components());
  });
  for (std::size_t i = 0; i < table_count_; ++i) {
    then([&] { return WriteHuffmanTable(out_, dc_tables_[i]); });
    then([&] { return WriteHuffmanTable(out_, ac_tables_[i]); });
  }
  then([&] { return out_.FlushBuffer(0); });
  if (!Failed(status)) {
    stage_ = Stage::kHeaderWritten;
  }
  return status;
}

CodingStatus CJPEGEncoder::WriteData() {
  if (stage_ != Stage::kHeaderWritten) {
    return CodingStatus::kOutOfRange;
  }
  StartScan();
  CodingStatus status = WriteScanHeader(out_, scan_, components());
  for (std::int32_t row = 0; row < mcu_rows_ && !Failed(status); ++row) {
    status = CodeMcuRow(row);
  }
  if (!Failed(status)) {
    status = FlushEntropyCoder();
  }
  if (!Failed(status)) {
    status = WriteEndOfImage(out_);
  }
  return Failed(status) ? status : out_.FlushBuffer(0);
}

void CJPEGEncoder::StartScan() {
  std::size_t block = 0;
  for (CJPEGColorComponent& component : components()) {
    const ComponentSettings& settings = component.settings();
    component.coder() = {.dc = &dc_tables_[settings.dc_table].codes(),
                         .ac = &ac_tables_[settings.ac_table].codes()};
    for (std::int32_t i = 0; i < component.blocks_per_mcu(); ++i) {
      mcu_coders_[block++] = &component.coder();
    }
  }
  huffman_state_.Reset();
}

CodingStatus CJPEGEncoder::CodeMcuRow(std::int32_t mcu_row) {
  ConvertColours(mcu_row);
  for (CJPEGColorComponent& component : components()) {
    component.Pad(source_.width, image_rows_);
    component.DownSample(kernels_);
  }
  Transform();
  return CodeCoefficients();
}

void CJPEGEncoder::ConvertColours(std::int32_t mcu_row) {
  const std::int32_t first = mcu_row * kMcuHeight;
  image_rows_ = std::min(kMcuHeight, source_.height - first);
  const auto width = static_cast<std::size_t>(source_.width);
  for (std::int32_t row = 0; row < image_rows_; ++row) {
    const std::uint8_t* const pixels =
        source_.pixels + std::ptrdiff_t{first + row} * source_.line_step;
    std::uint8_t* const y = components_[0].ConvertedRow(row);
    if (component_count_ == 1) {
      std::copy_n(pixels, width, y);
      continue;
    }
    const auto convert = source_.channels == 3 ? kernels_.convert_bgr24 : kernels_.convert_bgr32;
    convert(pixels, y, components_[1].ConvertedRow(row), components_[2].ConvertedRow(row), width);
  }
}

void CJPEGEncoder::Transform() {
  const std::ptrdiff_t mcu_step = std::ptrdiff_t{blocks_per_mcu_} * kBlockSize;
  auto* coefficients = reinterpret_cast<std::int16_t*>(coefficients_.data());
  for (CJPEGColorComponent& component : components()) {
    const ComponentSettings& settings = component.settings();
    for (std::int32_t v = 0; v < settings.v; ++v) {
      for (std::int32_t h = 0; h < settings.h; ++h, coefficients += kBlockSize) {
        kernels_.transform({.samples = component.SubSampledRow(8 * v) + 8 * h,
                            .line_step = component.sub_sampled_step(),
                            .block_step = 8 * settings.h,
                            .coefficients = coefficients,
                            .coefficient_step = mcu_step,
                            .count = static_cast<std::size_t>(mcus_per_row_),
                            .table = &quant_tables_[settings.quant_table].forward()});
      }
    }
  }
}

CodingStatus CJPEGEncoder::CodeCoefficients() {
  // A scan of one component has its blocks in plain order, without those that only fill an MCU
  // (T.81, A.2.2).
  const std::int32_t blocks =
      component_count_ == 1 ? (source_.width + 7) / 8 : mcus_per_row_ * blocks_per_mcu_;
  BlockRun run{.coefficients = reinterpret_cast<const std::int16_t*>(coefficients_.data()),
               .count = static_cast<std::size_t>(blocks),
               .pattern = std::span(mcu_coders_).first(static_cast<std::size_t>(blocks_per_mcu_)),
               .place = 0};
  CodingStatus status = CodingStatus::kOk;
  while (run.count > 0 && !Failed(status)) {
    // 128 free bytes, which are asked for at the end of the scan, are enough for most blocks but
    // not for all.
    status = out_.FlushBuffer(kRoomForBlock);
    if (!Failed(status)) {
      status = kernels_.code_blocks(&run, {.bytes = out_.buffer(),
                                           .size = out_.buffer_size(),
                                           .position = &out_.position(),
                                           .pending = &huffman_state_.pending()});
    }
  }
  return status;
}

CodingStatus CJPEGEncoder::FlushEntropyCoder() {
  constexpr std::int32_t kRoomForRest = 128;
  const CodingStatus status = out_.FlushBuffer(kRoomForRest);
  return Failed(status) ? status
                        : FlushPendingBits(out_.buffer(), out_.buffer_size(), &out_.position(),
                                           &huffman_state_.pending());
}

}  // namespace vexa::output
