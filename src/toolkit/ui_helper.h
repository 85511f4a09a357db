#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QLabel;
class QWidget;

/// Small pieces of user interface that several views need. GUI thread.
class UIHelper {
public:
    /// A new label, owned by `parent`; style sheets and tests find it by its object name.
    static QLabel *GenerateLabelWithName(const QString &objectName, const QString &text, QWidget *parent);

    /// The SVG drawing `resource` with all that has the colour `from` in the colour `to` instead, however the
    /// drawing writes that colour. Drawn anew for every size and pixel ratio, so it is never a scaled bitmap.
    /// A null icon and one warning when the drawing cannot be read.
    static QIcon recolouredSvgIcon(const QString &resource, const QColor &from, const QColor &to);
};
