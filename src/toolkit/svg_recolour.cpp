#include "toolkit/svg_recolour.h"

#include <QRegularExpression>
#include <QString>

namespace {

const QString fillOfRoot = R"(<svg\b[^>]*?\bfill\s*[:=])";

/// Gives the root element a fill, which everything inherits that has none.
void nameDefaultFill(QString *svg, const QColor &colour) {
    const int root = svg->indexOf(QRegularExpression(R"(<svg\b)"));
    if (root >= 0 && !svg->contains(QRegularExpression(fillOfRoot)))
        svg->insert(root + 4, QString(" fill=\"%1\"").arg(colour.name()));
}

}  // namespace

QByteArray recolouredSvg(const QByteArray &svg, const QColor &from, const QColor &to) {
    static const QRegularExpression paint(R"(\b(?:fill|stroke|stop-color|color)\s*[:=]\s*["']?\s*(#\w+|\w+))");
    QString text = QString::fromUtf8(svg);
    int at = 0;
    for (auto match = paint.match(text); match.hasMatch(); match = paint.match(text, at)) {
        at = match.capturedEnd(1);
        if (QColor(match.captured(1)) != from)
            continue;
        text.replace(match.capturedStart(1), match.capturedLength(1), to.name());
        at = match.capturedStart(1) + to.name().size();
    }
    if (from == QColor(Qt::black))
        nameDefaultFill(&text, to);
    return text.toUtf8();
}
