#pragma once

#include <QLoggingCategory>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

/// A shared library that is loaded at run time, with a list of entry points that it must have.
///
/// Destroying the object leaves the library loaded, because threads of the library may still be running. load() and
/// unload() must not run while another thread uses the object; function() may be called from any thread.
class VendorLibrary {
public:
    enum class Reason {
        NotFound,
        NotALibrary,
        WrongArchitecture,  ///< for example a 32-bit library
        MissingDependency,  ///< a library that this one needs is missing or cannot be loaded
        MissingEntryPoint,
        Other,
    };

    /// Why a library cannot be used.
    struct Error {
        Reason reason = Reason::Other;
        QString file;           ///< the library's path, or its file name if it was not found
        QString missing;        ///< the dependency, if the system names it, or the first missing entry point
        QString systemMessage;  ///< the description by the system, if available

        /// Describes the error in English, without a full stop.
        [[nodiscard]] QString text() const;
        /// Logs `consequence`, a colon and the error. The log level is warning, or info if the library was not found,
        /// which is normal on most computers.
        void log(const QLoggingCategory &category, const char *consequence) const;
    };

    /// `name` is a path, or a name without the system's prefix and suffix, which is looked up in the system's search
    /// path. `beforeUnload` is called before the library is unloaded, when its entry points can still be called.
    /// With a `version`, a name is looked up with this version first and then without one, see
    /// system_library::fileNamesOf().
    VendorLibrary(const QString &name, std::vector<const char *> entryPoints,
                  std::function<void()> beforeUnload = nullptr, std::optional<int> version = std::nullopt);

    /// Loads the library and resolves its entry points, after unloading it if it was loaded. Returns false if
    /// the library cannot be loaded or lacks an entry point. The library is then not loaded.
    [[nodiscard]] bool load();
    void unload();

    /// Returns why the last load() failed.
    [[nodiscard]] const std::optional<Error> &error() const { return error_; }

    /// Returns the entry point at `index` of the list, or null if the library is not loaded or has no such entry point.
    template <typename Function>
    [[nodiscard]] Function function(std::size_t index) const {
        return handle_ ? reinterpret_cast<Function>(functions_[index]) : nullptr;
    }

private:
    [[nodiscard]] void *open();

    const QStringList fileNames_;
    const std::vector<const char *> entryPoints_;
    const std::function<void()> beforeUnload_;
    std::vector<QFunctionPointer> functions_;
    void *handle_ = nullptr;
    std::optional<Error> error_;
};
