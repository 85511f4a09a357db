#include "foreign_library.h"

#include <windows.h>

namespace {

template <typename Headers>
QByteArray portableExecutable(WORD machine) {
    struct Start {
        IMAGE_DOS_HEADER dos;
        Headers headers;
    };
    Start start{};
    start.dos.e_magic = IMAGE_DOS_SIGNATURE;
    start.dos.e_lfanew = sizeof start.dos;
    start.headers.Signature = IMAGE_NT_SIGNATURE;
    start.headers.FileHeader.Machine = machine;
    start.headers.FileHeader.SizeOfOptionalHeader = sizeof start.headers.OptionalHeader;
    start.headers.FileHeader.Characteristics = IMAGE_FILE_DLL | IMAGE_FILE_EXECUTABLE_IMAGE;
    return QByteArray(reinterpret_cast<const char *>(&start), sizeof start).leftJustified(4096, '\0');
}

}  // namespace

QList<ForeignLibrary> foreignLibraries() {
    return {{"32-bit x86", portableExecutable<IMAGE_NT_HEADERS32>(IMAGE_FILE_MACHINE_I386)},
            {"64-bit Itanium", portableExecutable<IMAGE_NT_HEADERS64>(IMAGE_FILE_MACHINE_IA64)}};
}
