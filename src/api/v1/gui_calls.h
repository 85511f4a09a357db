#pragma once

#include "core/guarded.h"

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace api_v1 {

/// Runs functions on the GUI thread for other threads, which wait for them. The object lives on the GUI thread.
class GuiCalls : public QObject {
    Q_OBJECT

public:
    explicit GuiCalls(QObject *parent = nullptr);
    ~GuiCalls() override;

    /// Calls `function` on the GUI thread and waits for its end. Returns false if it did not begin within `timeout`, or
    /// if close() was called first. The function is then never called. Once it has begun, run() waits for it without a
    /// timeout. Passes on the exceptions of `function`. Any thread.
    [[nodiscard]] bool run(const std::function<void()> &function, std::chrono::milliseconds timeout);

    /// Revokes all calls that have not begun, and refuses later ones. GUI thread.
    void close();

private:
    class Call;
    struct Calls {
        bool isClosed = false;
        std::vector<std::weak_ptr<Call>> waiting;
    };

    Guarded<Calls> calls_;
};

}  // namespace api_v1
