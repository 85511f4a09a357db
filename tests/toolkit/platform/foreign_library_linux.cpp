#include "foreign_library.h"

#include <cstring>
#include <elf.h>

namespace {

template <typename Header>
QByteArray elf(unsigned char elfClass, Elf32_Half machine) {
    Header header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = elfClass;
    header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_ident[EI_VERSION] = EV_CURRENT;
    header.e_type = ET_DYN;
    header.e_machine = machine;
    header.e_version = EV_CURRENT;
    return QByteArray(reinterpret_cast<const char *>(&header), sizeof header).leftJustified(4096, '\0');
}

}  // namespace

QList<ForeignLibrary> foreignLibraries() {
    return {{"32-bit x86", elf<Elf32_Ehdr>(ELFCLASS32, EM_386)},
            {"64-bit SPARC", elf<Elf64_Ehdr>(ELFCLASS64, EM_SPARCV9)}};
}
