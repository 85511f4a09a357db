#pragma once

#include <string_view>

/// Standard input and output of a GUI program. No function except readCharacter() blocks. GUI thread, except where
/// noted.
///
/// Output is for users who start the program from a console. It is dropped if its reader does not keep up, or if it
/// would make a file larger than 10 MB. A pipe or socket gets at most 10 MB, and at most 1000 repetitions of a text,
/// because desktop sessions connect standard output to their journal.
///
/// On Windows only files and pipes are used, because a GUI program has no console. The non-blocking mode of a pipe
/// also applies to other processes that write to it. Line endings are written unchanged.
namespace console {

/// Opens missing standard streams and makes output non-blocking. Call it before any file or connection is opened.
/// Otherwise a file could get the descriptor of a closed standard stream, and output would go to that file.
void prepare();

/// Writes a text to standard output. Any thread.
void print(std::string_view text);

/// Returns whether readCharacter() would read an answer: a user may type one in a terminal, or a file, pipe or socket
/// contains one. Returns false for a pipe or socket that is still empty, because waiting for it might never end.
[[nodiscard]] bool canAnswer();

/// Waits for one character of standard input and discards the rest of the line in a terminal. Returns -1 at the end of
/// the input or without an input.
[[nodiscard]] int readCharacter();

}  // namespace console
