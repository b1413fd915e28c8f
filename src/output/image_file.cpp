#include "output/image_file.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "output/bmp_file.hpp"
#include "output/jpeg_file.hpp"
#include "output/raw_file.hpp"
#include "output/tiff_file.hpp"
#include "platform/output_file.hpp"

namespace vexa::output {
namespace {

char16_t Upper(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

bool BeginsWith(std::u16string_view name, std::u16string_view beginning) {
  return beginning.size() <= name.size() &&
         std::equal(beginning.begin(), beginning.end(), name.begin(),
                    [](char16_t a, char16_t b) { return Upper(a) == b; });
}

// What can be refused before a file is created.
Status CheckImage(FileType type, const Image& image) {
  switch (type) {
    case FileType::kRaw:
      return CheckRaw(image);
    case FileType::kBmp:
      return CheckBmp(image);
    case FileType::kTiff:
      return CheckTiff(image);
    case FileType::kJpeg:
      return CheckJpeg(image);
  }
  return error::kInvalidParameter;
}

}  // namespace

FileType FileTypeOfExtension(std::u16string_view extension) {
  constexpr std::array<std::pair<std::u16string_view, FileType>, 5> kNames = {{
      {u"RAW", FileType::kRaw},
      {u"TIF", FileType::kTiff},
      {u"TIFF", FileType::kTiff},
      {u"JPG", FileType::kJpeg},
      {u"JPEG", FileType::kJpeg},
  }};
  for (const auto& [name, type] : kNames) {
    if (BeginsWith(name, extension)) {
      return type;
    }
  }
  return FileType::kBmp;
}

Status SaveImage(const Image& image, const std::u16string& file_name,
                 std::uint32_t jpeg_compression) {
  const std::size_t dot = file_name.rfind(u'.');
  if (dot == std::u16string::npos) {
    return error::kInvalidParameter;
  }
  const FileType type = FileTypeOfExtension(std::u16string_view(file_name).substr(dot + 1));
  const Status accepted = CheckImage(type, image);
  if (!accepted.ok()) {
    return accepted;
  }
  const platform::OutputFile file = platform::CreateOutputFile(file_name);
  if (file == nullptr) {
    return error::kOpenFailed;
  }
  switch (type) {
    case FileType::kRaw:
      return WriteRaw(image, file.get());
    case FileType::kTiff:
      return WriteTiff(image, file.get());
    case FileType::kJpeg:
      return WriteJpeg(image, jpeg_compression, file.get());
    case FileType::kBmp:
      break;
  }
  return WriteBmp(image, file.get());
}

}  // namespace vexa::output
