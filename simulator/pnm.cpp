// Reading PNM files (Netpbm's binary grey and colour formats).
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>

#include "simulator/picture.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint32_t kLongestSide = 16384;
constexpr std::uint32_t kWhite = 65535;

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Walks through the header.
class HeaderReader {
 public:
  explicit HeaderReader(const std::string& bytes) : bytes_(bytes) {}

  /// The next number; false when there is none or it exceeds 65535 times the longest side.
  bool Number(std::uint32_t* value) {
    SkipBlanks();
    *value = 0;
    bool any = false;
    while (position_ < bytes_.size() && bytes_[position_] >= '0' && bytes_[position_] <= '9') {
      *value = *value * 10 + static_cast<std::uint32_t>(bytes_[position_++] - '0');
      any = true;
      if (*value > kWhite * kLongestSide / 10) return false;
    }
    return any;
  }

  /// Steps over the single white space that ends the header.
  bool End() { return position_ < bytes_.size() && IsSpace(bytes_[position_++]); }

  std::size_t position() const { return position_; }

 private:
  void SkipBlanks() {
    bool comment = false;
    for (; position_ < bytes_.size(); ++position_) {
      const char c = bytes_[position_];
      if (comment) {
        comment = c != '\n' && c != '\r';
      } else if (c == '#') {
        comment = true;
      } else if (!IsSpace(c)) {
        return;
      }
    }
  }

  const std::string& bytes_;
  std::size_t position_ = 2;
};

struct Header {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t maximum = 0;
  std::size_t data = 0;
  std::uint32_t channels = 1;

  std::size_t sample_bytes() const { return maximum < 256 ? 1 : 2; }
};

std::string ParseHeader(const std::string& bytes, Header* header) {
  if (bytes.size() < 2 || bytes[0] != 'P' || (bytes[1] != '5' && bytes[1] != '6')) {
    return "not a binary PNM image (P5 or P6)";
  }
  header->channels = bytes[1] == '6' ? 3 : 1;
  HeaderReader reader(bytes);
  if (!reader.Number(&header->width) || !reader.Number(&header->height) ||
      !reader.Number(&header->maximum) || !reader.End()) {
    return "malformed header";
  }
  header->data = reader.position();
  if (header->width == 0 || header->height == 0 || header->width > kLongestSide ||
      header->height > kLongestSide) {
    return "sides must have 1 to 16384 pixels";
  }
  if (header->maximum == 0 || header->maximum > kWhite) return "maximum value must be 1 to 65535";
  return {};
}

}  // namespace

std::shared_ptr<const Picture> UniformPicture(std::uint16_t red, std::uint16_t green,
                                              std::uint16_t blue) {
  return std::make_shared<const Picture>(Picture{1, 1, {red, green, blue}});
}

PictureFile ParsePnm(const std::string& bytes) {
  Header header;
  const std::string error = ParseHeader(bytes, &header);
  if (!error.empty()) return {nullptr, error};
  const std::size_t pixels = std::size_t{header.width} * header.height;
  const std::size_t samples = pixels * header.channels;
  if (bytes.size() - header.data < samples * header.sample_bytes()) {
    return {nullptr, "file ends before the last pixel"};
  }
  const auto sample = [&](std::size_t index) {
    const auto byte = [&](std::size_t at) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[header.data + at]));
    };
    // Two-byte samples come high byte first.
    const std::uint32_t value =
        header.sample_bytes() == 1 ? byte(index) : byte(2 * index) << 8 | byte(2 * index + 1);
    const std::uint32_t bounded = value < header.maximum ? value : header.maximum;
    return static_cast<std::uint16_t>((bounded * kWhite + header.maximum / 2) / header.maximum);
  };
  Picture picture{header.width, header.height, {}};
  picture.rgb.resize(pixels * 3);
  for (std::size_t i = 0; i < picture.rgb.size(); ++i) {
    picture.rgb[i] = sample(header.channels == 3 ? i : i / 3);
  }
  return {std::make_shared<const Picture>(std::move(picture)), {}};
}

PictureFile ReadPnm(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return {nullptr, path + ": cannot be opened"};
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) return {nullptr, path + ": cannot be read"};
  PictureFile result = ParsePnm(bytes);
  if (result.picture == nullptr) result.error = path + ": " + result.error;
  return result;
}

}  // namespace vexa::simulator
