#include "toolkit/platform/key_watcher.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <optional>

namespace {

class ApplicationKeyWatcher : public QObject, public KeyWatcher {
public:
    explicit ApplicationKeyWatcher(const Report &report) : report_(report) {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::KeyPress)
            pressed(*static_cast<QKeyEvent *>(event));
        else if (event->type() == QEvent::KeyRelease)
            released(*static_cast<QKeyEvent *>(event));
        return QObject::eventFilter(watched, event);
    }

private:
    struct Press {
        int key;
        ulong timestampMs;
    };

    /// Qt delivers the event of one press to several objects: the window, the widget and its parents. These events have
    /// the same key and timestamp, with no release in between.
    void pressed(const QKeyEvent &event) {
        if (event.isAutoRepeat())
            return;
        if (last_ && last_->key == event.key() && last_->timestampMs == event.timestamp())
            return;
        last_ = Press{event.key(), event.timestamp()};
        report_(static_cast<Qt::Key>(event.key()));
    }

    void released(const QKeyEvent &event) {
        if (!event.isAutoRepeat() && last_ && last_->key == event.key())
            last_.reset();
    }

    Report report_;
    std::optional<Press> last_;
};

}  // namespace

std::unique_ptr<KeyWatcher> createApplicationKeyWatcher(const KeyWatcher::Report &report) {
    return std::make_unique<ApplicationKeyWatcher>(report);
}
