#pragma once

#include <QByteArray>
#include <QColor>

/// The drawing `svg` with the colour `from` replaced by `to` in fills, strokes and gradients, written as an
/// attribute or in a style, as "#000", "#000000" or "black". What has no fill of its own is black, by the
/// rules of SVG.
QByteArray recolouredSvg(const QByteArray &svg, const QColor &from, const QColor &to);
