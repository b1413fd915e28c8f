/** What the command-line program needs from the operating system; one implementation each in
 * posix/ and windows/. */
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vexa::tool {

/** The two standard streams that the program writes to. */
enum class Stream { kOutput, kError };

/** Whether a stream goes to a terminal, where a line can be rewritten. */
bool IsTerminal(Stream stream);

/** Writes UTF-8 text, in full and at once (nothing stays in a buffer). A Windows console gets it as
 * UTF-16, whatever its code page. @return false when the stream takes no more. */
bool Write(Stream stream, std::string_view text);

/** From now on the first interrupt (Ctrl-C, a termination signal) only sets the flag that
 * Interrupted() reads; the second ends the program at once. */
void CatchInterrupts();

/** Whether the user has asked the program to end. */
bool Interrupted();

/** Processor time of the whole process, user and system, in seconds. */
double ProcessCpuSeconds();

/** The operating system's text for one of its error codes, empty when it has none. */
std::string SystemErrorText(std::uint32_t code);

}  // namespace vexa::tool
