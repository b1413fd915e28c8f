/// \file
/// Buffered file output.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace vexa::platform {

struct FileCloser {
  void operator()(std::FILE* file) const;
};
using OutputFile = std::unique_ptr<std::FILE, FileCloser>;

/// Creates (or truncates) a file for binary writing; null when that fails. The name is UTF-16 on
/// every system, names outside the narrow code page included.
OutputFile CreateOutputFile(const std::u16string& path);

}  // namespace vexa::platform
