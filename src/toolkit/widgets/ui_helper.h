#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QLabel;
class QWidget;

/// Helpers for building user interfaces. GUI thread.
class UIHelper {
public:
    /// Returns a new label, owned by `parent`. Style sheets and tests find it by its object name.
    static QLabel *GenerateLabelWithName(const QString &objectName, const QString &text, QWidget *parent);

    /// Returns the SVG drawing `resource` as an icon in the single colour `colour`. The drawing's own colours are
    /// ignored, and its transparency is kept. The icon is rendered for each size and pixel ratio and never scaled.
    /// Returns a null icon if the drawing cannot be read; Qt logs the reason.
    static QIcon tintedSvgIcon(const QString &resource, const QColor &colour);
};
