#pragma once

#include <string_view>

/// The standard streams of a program that has windows: nobody may be reading or writing at their other end.
///
/// GUI thread. What is printed is for people who started the program from a console; it never holds up the program
/// and never ends it, so text that nobody takes is dropped, and so is what would make a file larger than 10 MB.
///
/// On Windows the streams are what a script or another program puts in their place, files and pipes; a program with
/// windows gets no console, and uses none that it is handed. Whoever else writes to the same pipe does not wait for its
/// reader then either. Line ends are written as they are given.
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
