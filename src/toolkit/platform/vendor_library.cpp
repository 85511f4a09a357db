#include "toolkit/platform/vendor_library.h"

#include "toolkit/platform/system_library.h"

#include <QDir>
#include <QSysInfo>
#include <algorithm>
#include <utility>

namespace {

QString nameOrPath(const QString &name) {
    return QDir::fromNativeSeparators(name).contains('/') ? name : system_library::fileNameOf(name);
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
                             std::function<void()> beforeUnload)
    : fileName_(nameOrPath(name)),
      entryPoints_(std::move(entryPoints)),
      beforeUnload_(std::move(beforeUnload)),
      functions_(entryPoints_.size()) {}

bool VendorLibrary::load() {
    unload();
    error_.reset();
    const system_library::OpenResult opened = system_library::open(fileName_);
    handle_ = opened.handle;
    if (!handle_) {
        error_ = opened.error;
        return false;
    }
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

void VendorLibrary::unload() {
    if (!handle_)
        return;
    if (beforeUnload_)
        beforeUnload_();
    system_library::close(std::exchange(handle_, nullptr));
}
