#include "toolkit/platform/vendor_library.h"

#include "toolkit/platform/system_library.h"

#include <QDir>
#include <QSysInfo>
#include <algorithm>
#include <utility>

namespace {

QStringList fileNames(const QString &name, std::optional<int> version) {
    return QDir::fromNativeSeparators(name).contains('/') ? QStringList(name)
                                                          : system_library::fileNamesOf(name, version);
}

}  // namespace

QString VendorLibrary::Error::text() const {
    const QString path = QDir::toNativeSeparators(file);
    const QString end = systemMessage.isEmpty() ? QString() : ": " + systemMessage;
    switch (reason) {
        case Reason::NotFound:
            return QString("library %1 not found").arg(path);
        case Reason::NotALibrary:
            return QString("%1 is not a library").arg(path);
        case Reason::WrongArchitecture:
            return QString("%1 is for another processor architecture than %2")
                .arg(path, QSysInfo::buildCpuArchitecture());
        case Reason::MissingDependency:
            return QString("%1 needs %2, which cannot be loaded")
                       .arg(path, missing.isEmpty() ? QString("another library") : missing) +
                   end;
        case Reason::MissingEntryPoint:
            return QString("%1 lacks the entry point %2").arg(path, missing);
        case Reason::Other:
            break;
    }
    return QString("%1 cannot be loaded").arg(path) + end;
}

void VendorLibrary::Error::log(const QLoggingCategory &category, const char *consequence) const {
    const auto self = [&category]() -> const QLoggingCategory & { return category; };
    const QString line = QString("%1: %2").arg(consequence, text());
    if (reason == Reason::NotFound)
        qCInfo(self).noquote() << line;
    else
        qCWarning(self).noquote() << line;
}

VendorLibrary::VendorLibrary(const QString &name, std::vector<const char *> entryPoints,
                             std::function<void()> beforeUnload, std::optional<int> version)
    : fileNames_(fileNames(name, version)),
      entryPoints_(std::move(entryPoints)),
      beforeUnload_(std::move(beforeUnload)),
      functions_(entryPoints_.size()) {}

bool VendorLibrary::load() {
    unload();
    handle_ = open();
    if (!handle_)
        return false;
    std::transform(entryPoints_.begin(), entryPoints_.end(), functions_.begin(),
                   [this](const char *name) { return system_library::resolve(handle_, name); });
    const auto missing = std::find(functions_.begin(), functions_.end(), nullptr);
    if (missing == functions_.end())
        return true;
    const auto index = static_cast<std::size_t>(missing - functions_.begin());
    error_ = {Reason::MissingEntryPoint, system_library::pathOf(handle_), entryPoints_[index], {}};
    unload();
    return false;
}

/// Tries the next file name only if the file does not exist. Otherwise its error would be hidden.
void *VendorLibrary::open() {
    for (const QString &fileName : fileNames_) {
        const system_library::OpenResult opened = system_library::open(fileName);
        error_ = opened.handle ? std::nullopt : std::make_optional(opened.error);
        if (opened.handle || opened.error.reason != Reason::NotFound)
            return opened.handle;
    }
    return nullptr;
}

void VendorLibrary::unload() {
    if (!handle_)
        return;
    if (beforeUnload_)
        beforeUnload_();
    system_library::close(std::exchange(handle_, nullptr));
}
