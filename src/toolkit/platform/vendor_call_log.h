#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <atomic>
#include <vector>

/// Logs the failing calls of a vendor's library: function, result and meaning.
///
/// A line is logged when the result of a function changes, so a call that fails 100 times per second does not fill the
/// log. The log level is info, because a failure may be normal, for example while a device is not attached. Callable
/// from any thread.
class VendorCallLog {
public:
    /// A result other than 0, and what it means.
    struct Meaning {
        int result;
        const char *text;
    };

    /// `functions` and the texts of `meanings` must outlive the log. `category` is declared with
    /// Q_DECLARE_LOGGING_CATEGORY.
    VendorCallLog(const QLoggingCategory &(*category)(), std::vector<const char *> functions,
                  std::vector<Meaning> meanings = {});

    /// Returns `result`, the result of the function at `index` of the list. Logs it if it is not 0 and differs from the
    /// function's previous result.
    int checked(std::size_t index, int result);

private:
    [[nodiscard]] QByteArray meaningOf(int result) const;

    const QLoggingCategory &(*const category_)();
    const std::vector<const char *> functions_;
    const std::vector<Meaning> meanings_;
    std::vector<std::atomic<int>> lastResults_;
};
