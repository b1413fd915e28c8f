/// \file
/// The one way in which functions inside the library report failure.
#pragma once

#include <cstdint>

namespace vexa {

/// A system error code; 0 is success. The numbers are those of Windows on every system, because
/// applications compare them and because the driver answers with them.
class [[nodiscard]] Status {
 public:
  constexpr Status() = default;
  constexpr explicit Status(std::uint32_t code) : code_(code) {}

  constexpr bool ok() const { return code_ == 0; }
  constexpr std::uint32_t code() const { return code_; }

  friend constexpr bool operator==(Status, Status) = default;

 private:
  std::uint32_t code_ = 0;
};

/// System error codes that the library sets or reacts to (winerror.h names in the comments).
namespace error {
inline constexpr Status kNone{};
inline constexpr Status kPathNotFound{3};             // ERROR_PATH_NOT_FOUND
inline constexpr Status kAccessDenied{5};             // ERROR_ACCESS_DENIED
inline constexpr Status kInvalidHandle{6};            // ERROR_INVALID_HANDLE
inline constexpr Status kNotEnoughMemory{8};          // ERROR_NOT_ENOUGH_MEMORY
inline constexpr Status kInvalidData{13};             // ERROR_INVALID_DATA
inline constexpr Status kNoMoreFiles{18};             // ERROR_NO_MORE_FILES
inline constexpr Status kWriteFault{29};              // ERROR_WRITE_FAULT
inline constexpr Status kReadFault{30};               // ERROR_READ_FAULT
inline constexpr Status kGeneralFailure{31};          // ERROR_GEN_FAILURE
inline constexpr Status kNotSupported{50};            // ERROR_NOT_SUPPORTED
inline constexpr Status kInvalidParameter{87};        // ERROR_INVALID_PARAMETER
inline constexpr Status kOpenFailed{110};             // ERROR_OPEN_FAILED
inline constexpr Status kDiskFull{112};               // ERROR_DISK_FULL
inline constexpr Status kSemaphoreTimeout{121};       // ERROR_SEM_TIMEOUT
inline constexpr Status kInsufficientBuffer{122};     // ERROR_INSUFFICIENT_BUFFER
inline constexpr Status kModuleNotFound{126};         // ERROR_MOD_NOT_FOUND
inline constexpr Status kProcedureNotFound{127};      // ERROR_PROC_NOT_FOUND
inline constexpr Status kBadPathName{161};            // ERROR_BAD_PATHNAME
inline constexpr Status kBusy{170};                   // ERROR_BUSY
inline constexpr Status kFileNameTooLong{206};        // ERROR_FILENAME_EXCED_RANGE
inline constexpr Status kFileTooLarge{223};           // ERROR_FILE_TOO_LARGE
inline constexpr Status kWaitTimeout{258};            // WAIT_TIMEOUT
inline constexpr Status kNoMoreItems{259};            // ERROR_NO_MORE_ITEMS
inline constexpr Status kOperationAborted{995};       // ERROR_OPERATION_ABORTED
inline constexpr Status kIoPending{997};              // ERROR_IO_PENDING
inline constexpr Status kInvalidFlags{1004};          // ERROR_INVALID_FLAGS
inline constexpr Status kPossibleDeadlock{1131};      // ERROR_POSSIBLE_DEADLOCK
inline constexpr Status kNoUnicodeTranslation{1113};  // ERROR_NO_UNICODE_TRANSLATION
inline constexpr Status kDeviceNotConnected{1167};    // ERROR_DEVICE_NOT_CONNECTED
/// No system code: a failure that leaves the caller's last error as it is.
inline constexpr Status kLastErrorKept{0xFFFFFFFF};
}  // namespace error

}  // namespace vexa
