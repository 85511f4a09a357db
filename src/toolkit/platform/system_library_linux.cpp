#include "toolkit/platform/system_library.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>

using Error = VendorLibrary::Error;
using Reason = VendorLibrary::Reason;

namespace {

/// Returns the search path of dlopen(), without the folders that are only in the cache of ldconfig.
QStringList searchPath() {
    void *program = dlopen(nullptr, RTLD_LAZY);
    if (!program)
        return {};
    QStringList folders;
    Dl_serinfo size{};
    if (dlinfo(program, RTLD_DI_SERINFOSIZE, &size) == 0) {
        // The strings follow the array of the structure.
        std::vector<Dl_serinfo> memory(size.dls_size / sizeof(Dl_serinfo) + 1, size);
        Dl_serinfo *info = memory.data();
        if (dlinfo(program, RTLD_DI_SERINFO, info) == 0) {
            for (unsigned i = 0; i < info->dls_cnt; ++i)
                folders << QFile::decodeName(info->dls_serpath[i].dls_name);
        }
    }
    dlclose(program);
    return folders;
}

/// Returns the path of the file that dlopen() tries first, or an empty string.
QString find(const QString &fileName) {
    if (fileName.contains('/'))
        return QFileInfo(fileName).isFile() ? fileName : QString();
    for (const QString &folder : searchPath()) {
        QString path = folder + '/' + fileName;
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}

/// The first fields of an ELF file, which are the same in 32-bit and 64-bit files.
struct ElfStart {
    unsigned char identity[EI_NIDENT];
    Elf32_Half type;
    Elf32_Half machine;

    [[nodiscard]] bool isElf() const { return std::memcmp(identity, ELFMAG, SELFMAG) == 0; }
    [[nodiscard]] bool hasArchitectureOf(const ElfStart &other) const {
        return identity[EI_CLASS] == other.identity[EI_CLASS] && identity[EI_DATA] == other.identity[EI_DATA] &&
               machine == other.machine;
    }
};

/// Returns std::nullopt if the file cannot be read. If the file is too short, the remaining bytes are zero.
std::optional<ElfStart> readStart(const QString &path) {
    QFile file(path);
    ElfStart start{};
    if (!file.open(QIODevice::ReadOnly) || file.read(reinterpret_cast<char *>(&start), sizeof start) < 0)
        return {};
    return start;
}

/// Inspects the file, because dlopen() skips a library for another architecture and then reports that it was not found.
Reason reasonFor(const QString &path) {
    const std::optional<ElfStart> start = readStart(path);
    const std::optional<ElfStart> program = readStart("/proc/self/exe");
    if (!start || !program)
        return Reason::Other;
    if (!start->isElf())
        return Reason::NotALibrary;
    return start->hasArchitectureOf(*program) ? Reason::Other : Reason::WrongArchitecture;
}

/// `message` is the text of dlerror(): a file name, a colon and a description, which may be translated.
Error explain(const QString &fileName, const QString &message) {
    const QString subject = message.section(": ", 0, 0);
    const QString problem = message.section(": ", 1);
    const QString path = find(fileName);
    if (QFileInfo(subject).fileName() != QFileInfo(fileName).fileName())
        return {Reason::MissingDependency, path.isEmpty() ? fileName : path, subject, problem};
    if (path.isEmpty())
        return {Reason::NotFound, fileName, {}, {}};
    return {reasonFor(path), path, {}, problem};
}

}  // namespace

QStringList system_library::fileNamesOf(const QString &name, std::optional<int> version) {
    const QString fileName = "lib" + name + ".so";
    return version ? QStringList{fileName + '.' + QString::number(*version), fileName} : QStringList(fileName);
}

system_library::OpenResult system_library::open(const QString &fileName) {
    if (void *handle = dlopen(QFile::encodeName(fileName).constData(), RTLD_LAZY))
        return {handle, {}};
    return {nullptr, explain(fileName, QString::fromLocal8Bit(dlerror()))};
}

void system_library::close(void *handle) {
    dlclose(handle);
}

QFunctionPointer system_library::resolve(void *handle, const char *entryPoint) {
    return reinterpret_cast<QFunctionPointer>(dlsym(handle, entryPoint));
}

QString system_library::pathOf(void *handle) {
    const link_map *map = nullptr;
    return dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 ? QFile::decodeName(map->l_name) : QString();
}
