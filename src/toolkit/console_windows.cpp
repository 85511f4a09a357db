#include "toolkit/console.h"

#include <windows.h>

namespace {

/// As on the other platforms: what is printed at every tick for days must not fill the disk.
constexpr LONGLONG fullFileBytes = 10 << 20;

/// A console is not used, should the program be handed one: whoever selects text in it would hold up the program, and
/// its shell would take half of what is typed.
bool isFileOrPipe(HANDLE stream) {
    const DWORD type = GetFileType(stream);
    return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE;
}

/// A pipe takes what it has room for, so it is not asked.
bool hasRoom(HANDLE stream, std::size_t bytes) {
    if (GetFileType(stream) != FILE_TYPE_DISK)
        return true;
    LARGE_INTEGER size{};
    return GetFileSizeEx(stream, &size) && size.QuadPart + static_cast<LONGLONG>(bytes) <= fullFileBytes;
}

}  // namespace

void console::prepare() {
    for (const DWORD name : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        // The number of a handle that was not inherited may stand here, and is given to the next thing that is opened.
        if (!isFileOrPipe(GetStdHandle(name)))
            SetStdHandle(name, nullptr);
    }
    // What is printed may fill what the log goes to. Of no effect but on pipes.
    DWORD neverWait = PIPE_READMODE_BYTE | PIPE_NOWAIT;
    SetNamedPipeHandleState(GetStdHandle(STD_OUTPUT_HANDLE), &neverWait, nullptr, nullptr);
    SetNamedPipeHandleState(GetStdHandle(STD_ERROR_HANDLE), &neverWait, nullptr, nullptr);
}

void console::print(std::string_view text) {
    const HANDLE stream = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD written = 0;
    if (stream && hasRoom(stream, text.size()))
        WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

int console::readCharacter() {
    unsigned char character = 0;
    DWORD count = 0;
    const HANDLE stream = GetStdHandle(STD_INPUT_HANDLE);
    const bool done = stream && ReadFile(stream, &character, 1, &count, nullptr);
    return done && count == 1 ? character : -1;
}
