#pragma once

#include <string_view>

/// The standard streams of a program that has windows: nobody may be reading or writing at their other end.
///
/// GUI thread. What is printed is for people who started the program from a console; it never holds up the program
/// and never ends it, so text that nobody takes is dropped, and so is what would make a file larger than 10 MB.
namespace console {

/// Before any file or connection is opened: one of these must not end up in the place of a stream that whoever
/// started the program has closed, or what is printed would go there. From then on the log waits for nobody, either.
void prepare();

/// Any thread.
void print(std::string_view text);

/// Waits for one character of standard input, and drops what a person typed behind it. -1 at the end of the input,
/// or where there is none.
[[nodiscard]] int readCharacter();

}  // namespace console
