#include "toolkit/ui_helper.h"

#include "toolkit/svg_icon_engine.h"
#include "toolkit/svg_recolour.h"
#include "toolkit/toolkit_log.h"

#include <QFile>
#include <QLabel>

QLabel *UIHelper::GenerateLabelWithName(const QString &objectName, const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setObjectName(objectName);
    return label;
}

QIcon UIHelper::recolouredSvgIcon(const QString &resource, const QColor &from, const QColor &to) {
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcToolkit).noquote() << "Cannot read the icon" << resource + ": " + file.errorString();
        return {};
    }
    const QByteArray svg = recolouredSvg(file.readAll(), from, to);
    if (!SvgIconEngine::canDraw(svg)) {
        qCWarning(lcToolkit).noquote() << "Cannot read the icon" << resource + ": it is not an SVG drawing";
        return {};
    }
    return QIcon(new SvgIconEngine(svg));
}
