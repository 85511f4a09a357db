#include "api/v1/screens_json.h"

#include "core/eyetracker_interface.h"

#include <QGuiApplication>
#include <QJsonObject>
#include <QScreen>

QJsonArray api_v1::screensJson() {
    QJsonArray array;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect area = screen->geometry();
        const qreal scale = screen->devicePixelRatio();
        array.append(QJsonObject{{"number", array.size() + 1},
                                 {"x", area.x()},
                                 {"y", area.y()},
                                 {"width", qRound(area.width() * scale)},
                                 {"height", qRound(area.height() * scale)},
                                 {"widthMm", screen->physicalSize().width()},
                                 {"heightMm", screen->physicalSize().height()},
                                 {"scale", scale},
                                 {"primary", screen == QGuiApplication::primaryScreen()}});
    }
    return array;
}

QJsonValue api_v1::areaJson(const EyetrackerInterface &tracker) {
    const QRect area = tracker.pixelArea();
    if (area.isEmpty())
        return {};
    const bool isDevice = tracker.pixelUnit() == EyetrackerInterface::PixelUnit::Device;
    return QJsonObject{{"x", area.x()},
                       {"y", area.y()},
                       {"width", area.width()},
                       {"height", area.height()},
                       {"unit", isDevice ? "device" : "desktop"}};
}
