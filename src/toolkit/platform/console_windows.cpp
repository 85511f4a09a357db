#include "toolkit/platform/console.h"
#include "toolkit/platform/output_limit.h"

#include <mutex>
#include <windows.h>

namespace {

/// Limits files because the program may print several lines a second for days.
constexpr LONGLONG maxFileBytes = 10 << 20;

/// A console is not used. Selecting text in it would block the program, and the shell would read a part of the input.
bool isFileOrPipe(HANDLE stream) {
    const DWORD type = GetFileType(stream);
    return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE;
}

/// A non-blocking pipe drops text that does not fit.
bool hasRoom(HANDLE stream, std::size_t bytes) {
    if (GetFileType(stream) != FILE_TYPE_DISK)
        return true;
    LARGE_INTEGER size{};
    return GetFileSizeEx(stream, &size) && size.QuadPart + static_cast<LONGLONG>(bytes) <= maxFileBytes;
}

}  // namespace

void console::prepare() {
    for (const DWORD name : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        // The value may be a handle that was not inherited. The next object that is opened could get the same value.
        if (!isFileOrPipe(GetStdHandle(name)))
            SetStdHandle(name, nullptr);
    }
    // Both streams may share one pipe. The calls fail for files.
    DWORD mode = PIPE_READMODE_BYTE | PIPE_NOWAIT;
    SetNamedPipeHandleState(GetStdHandle(STD_OUTPUT_HANDLE), &mode, nullptr, nullptr);
    SetNamedPipeHandleState(GetStdHandle(STD_ERROR_HANDLE), &mode, nullptr, nullptr);
}

void console::print(std::string_view text) {
    static std::mutex mutex;
    static OutputLimit limit;
    const std::lock_guard<std::mutex> lock(mutex);
    const HANDLE stream = GetStdHandle(STD_OUTPUT_HANDLE);
    if (GetFileType(stream) == FILE_TYPE_PIPE && !limit.admits(text))
        return;
    DWORD written = 0;
    if (stream && hasRoom(stream, text.size()))
        WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

bool console::canAnswer() {
    const HANDLE stream = GetStdHandle(STD_INPUT_HANDLE);
    DWORD unreadBytes = 0;
    if (PeekNamedPipe(stream, nullptr, 0, nullptr, &unreadBytes, nullptr))
        return unreadBytes > 0;
    LARGE_INTEGER size{};
    LARGE_INTEGER position{};
    return stream && GetFileType(stream) == FILE_TYPE_DISK && GetFileSizeEx(stream, &size) &&
           SetFilePointerEx(stream, {}, &position, FILE_CURRENT) && position.QuadPart < size.QuadPart;
}

int console::readCharacter() {
    unsigned char character = 0;
    DWORD count = 0;
    const HANDLE stream = GetStdHandle(STD_INPUT_HANDLE);
    const bool done = stream && ReadFile(stream, &character, 1, &count, nullptr);
    return done && count == 1 ? character : -1;
}
