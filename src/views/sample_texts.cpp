#include "views/sample_texts.h"

#include "core/eye_tracking_sample.h"

namespace {

QString oneDecimal(float value) {
    return QString::number(static_cast<double>(value), 'f', 1);
}

QString padded(const QString &text, int width) {
    return text.rightJustified(width);
}

QString percentOf(const char *axis, float value) {
    return axis + padded(oneDecimal(value), 6) + '%';
}

QString pixelsOf(const char *axis, qint32 value) {
    return axis + padded(QString::number(value), 5) + "px";
}

QString eyeSymbol(bool seen) {
    return seen ? QStringLiteral("0") : QStringLiteral("-");
}

EyeTexts eyeTexts(bool seen, float x, float y, float pupil, const QString &mm) {
    return {eyeSymbol(seen), oneDecimal(x) + '%', oneDecimal(y) + '%', padded(oneDecimal(pupil) + mm, 9)};
}

}  // namespace

SampleTexts::SampleTexts(const EyeTrackingSample &sample, const QString &cm, const QString &mm)
    : valid(sample.valid ? QStringLiteral("true") : QStringLiteral("false")),
      eyes(eyeSymbol(sample.l_valid) + eyeSymbol(sample.r_valid)),
      xPercent(percentOf("x:", sample.x)),
      yPercent(percentOf("y:", sample.y)),
      xPixels(pixelsOf("x:", sample.x_px)),
      yPixels(pixelsOf("y:", sample.y_px)),
      focus(oneDecimal(sample.focus)),
      distance(oneDecimal(sample.distance_cm) + cm),
      left(eyeTexts(sample.l_valid, sample.l_x, sample.l_y, sample.l_pupil_mm, mm)),
      right(eyeTexts(sample.r_valid, sample.r_x, sample.r_y, sample.r_pupil_mm, mm)) {}
