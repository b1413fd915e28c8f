/** Exit codes, error codes in words, and the exceptions that end a command. */
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vexa::tool {

/** Exit codes of the program, as --help documents them. */
enum class ExitCode {
  kSuccess = 0,
  kFailure = 1,    /**< A call failed, a file could not be written, a capture was interrupted. */
  kUsage = 2,      /**< The command line is wrong or does not fit the camera's settings. */
  kNoCamera = 3,   /**< No camera could be opened. */
  kIncomplete = 4, /**< Frames were lost, receiving failed, no frame came in time, or the
                        level did not settle. */
};

/** A failure with its exit code and, in a second line, what the user can do about it. */
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode exit_code, const std::string& message, std::string advice = {});

  ExitCode exit_code() const { return exit_code_; }
  const std::string& advice() const { return advice_; }

 private:
  ExitCode exit_code_;
  std::string advice_;
};

/** A failed call of the library. */
class ApiError : public ToolError {
 public:
  /** @param call   name of the failed function, and its subject where that helps.
   *  @param code   the last-error code.
   *  @param advice what to do; empty takes the general advice for the code. */
  ApiError(const std::string& call, std::uint32_t code, std::string advice = {});

  std::uint32_t code() const { return code_; }

 private:
  std::uint32_t code_;
};

/** A last-error or receive-error code with its meaning, for example "87 (invalid parameter)". */
std::string DescribeCode(std::uint32_t code);

/** What a user can do about a code; empty when there is nothing general to say. */
std::string AdviceFor(std::uint32_t code);

}  // namespace vexa::tool
