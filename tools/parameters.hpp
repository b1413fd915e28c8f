/** The settings and actions that have a number, with what a user wants to know about them. */
#pragma once

#include <VexaAPI.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "camera.hpp"

namespace vexa::tool {

/** What a parameter's value is, which decides the functions that reach it. */
enum class ParameterKind { kAction, kByte, kWord, kDWord, kText, kFile };

/** One setting or action. */
struct Parameter {
  DWORD id;
  const char* name;
  ParameterKind kind;
  bool readable;
  bool writable;
  std::uint32_t max; /**< Largest value; the camera or model may allow less. */
  const char* unit;
  const char* what;
};

/** All of them, in the order of their numbers. */
std::span<const Parameter> Parameters();

/** The parameter of a name, or of a number (decimal or 0x...).
 *  @throws ToolError (kUsage) when there is none. */
const Parameter& FindParameter(const std::string& name_or_id);

/** "read, write", "read", "write", or "action". */
std::string AccessOf(const Parameter& parameter);

/** The values that a parameter can have, as far as they do not depend on the camera. */
std::string RangeOf(const Parameter& parameter);

/** A parameter's value in words, with its unit. @throws ApiError; ToolError (kUsage) for one that
 * cannot be read. */
std::string ReadParameter(const Camera& camera, const Parameter& parameter);

/** Sets a parameter, or carries out an action (without a value).
 *  @throws ApiError; ToolError (kUsage) for a value that cannot be, or a parameter that cannot be
 *  set. */
void WriteParameter(const Camera& camera, const Parameter& parameter, std::string_view value);

}  // namespace vexa::tool
