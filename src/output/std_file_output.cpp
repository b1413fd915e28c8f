#include "output/std_file_output.hpp"

#include <cstddef>

namespace vexa::output {

CodingStatus CStdFileOutput2::Open(void* /*argument*/) { return CodingStatus::kOk; }

CodingStatus CStdFileOutput2::Close() {
  file_ = nullptr;
  return CodingStatus::kOk;
}

CodingStatus CStdFileOutput2::Write(const std::uint8_t* bytes, std::int32_t count,
                                    std::int32_t* written) {
  *written = 0;
  if (file_ != nullptr && count > 0) {
    *written =
        static_cast<std::int32_t>(std::fwrite(bytes, 1, static_cast<std::size_t>(count), file_));
  }
  return *written == count ? CodingStatus::kOk : CodingStatus::kShortWrite;
}

}  // namespace vexa::output
