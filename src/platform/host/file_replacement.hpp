/// \file
/// Reading a file at once, and replacing it at once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/status.hpp"

namespace vexa::platform::host {

/// Reads a regular file of at most `limit` bytes. An empty content and success when there is no
/// such file; kAccessDenied for what is no regular file or may not be read, kFileTooLarge above the
/// limit. Names are UTF-8.
Status ReadWholeFile(const std::string& path, std::size_t limit, std::string* content);

/// Replaces a file, or creates it, in one step: the content goes to a new file in the same folder,
/// to the disk, and takes the old one's name. Keeps the old one's mode bits and, where the system
/// allows, its owner; follows symbolic links. A file that the caller may not write is left alone
/// (kAccessDenied), as it is on every other failure. Other hard links keep the old content. A
/// process that dies in the middle leaves the new file behind under its temporary name, which
/// begins with ".vexa-".
Status ReplaceFile(const std::string& path, std::string_view content);

}  // namespace vexa::platform::host
