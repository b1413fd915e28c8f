/// \file
/// Private-profile (INI) files: on Windows through the system's functions, elsewhere read and
/// written here by the same syntax.
///
/// A file is made of lines. "[Name]" begins a section, "Key=Value" stores a value, ";" begins a
/// comment line; blanks around names and values do not count, and a value may stand in quotes of
/// either kind. Upper and lower case of names are the same. Of sections or keys with the same name
/// the first counts. Files are UTF-16LE when they begin with its byte-order mark; else narrow text,
/// in the ANSI code page on Windows and in UTF-8, with or without mark, elsewhere.
///
/// Names and values are ASCII. Relative paths count from the current folder.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/status.hpp"

namespace vexa::platform {

/// Reads integers. Elsewhere than on Windows the file is read once, when the object is made. A file
/// that does not exist or cannot be read has no keys.
class ProfileReader {
 public:
  /// Throws std::bad_alloc.
  explicit ProfileReader(const std::u16string& path);
  ~ProfileReader();
  ProfileReader(const ProfileReader&) = delete;
  ProfileReader& operator=(const ProfileReader&) = delete;

  /// The integer at the beginning of a value: blanks, a sign, "0x", "0o" or "0b" for other bases
  /// than ten, digits; what follows them is ignored, no digits are 0. It wraps at 2^32. `fallback`
  /// when the key is missing or its value is empty.
  std::uint32_t ReadInteger(const std::string& section, const std::string& key,
                            std::uint32_t fallback) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Writes values. A key that exists is replaced, another one added at the end of its section;
/// everything else in the file stays byte for byte. The file is created when it does not exist.
class ProfileWriter {
 public:
  /// Throws std::bad_alloc.
  explicit ProfileWriter(const std::u16string& path);
  ~ProfileWriter();
  ProfileWriter(const ProfileWriter&) = delete;
  ProfileWriter& operator=(const ProfileWriter&) = delete;

  /// Stores a value: on Windows in the file, elsewhere for Commit().
  Status Write(const std::string& section, const std::string& key, const std::string& value);

  /// Brings what was written into the file. Elsewhere than on Windows the file is replaced as a
  /// whole: it has its old or its new content at any time, also when the process or the machine
  /// dies; without Commit() it stays as it was.
  Status Commit();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vexa::platform
