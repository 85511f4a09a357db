#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>

/// Reads the virtual screens and operates mouse and keyboard, as a user does.
namespace desktop {

/// The colours of the connection indicator.
constexpr QRgb connectedColour = 0xff33cc00;
constexpr QRgb disconnectedColour = 0xffcc3300;

/// The style of a text: the program's, or Qt's default, which message boxes have before the program sets its style.
enum class Look { Program, Plain };

/// Returns a picture of one window, or of the primary screen.
[[nodiscard]] QImage screenshot(quint32 window = 0);
/// Saves a screenshot in the artefacts folder of the build, for a person to look at.
void save(const QImage &screen, const QString &name);

/// Returns the place of a text with blank margins. Empty if the picture does not show it.
[[nodiscard]] QRect find(const QString &text, const QImage &picture, Look look = Look::Program);
[[nodiscard]] bool shows(const QString &text, Look look = Look::Program);
[[nodiscard]] bool showsAll(const QStringList &texts, const QImage &picture);
/// Waits for a text on the primary screen and returns its place. Empty after a timeout.
[[nodiscard]] QRect waitFor(const QString &text, Look look = Look::Program);
/// Returns the number of pixels with exactly this colour.
[[nodiscard]] int count(QRgb colour, const QImage &picture);
/// Returns whether the connection indicator has this colour.
[[nodiscard]] bool showsIndicator(QRgb colour);

/// Waits for a text and clicks on it. Returns false after a timeout.
[[nodiscard]] bool click(const QString &text);
void click(QPoint position);
/// Opens the list that shows `current`, chooses `next`, and waits until the list is closed. Returns false after a
/// timeout.
[[nodiscard]] bool choose(const QString &current, const QString &next);
void press(const QString &key, const QByteArray &window = QByteArray());

/// Returns the id of a visible window of a process, or an empty array.
[[nodiscard]] QByteArray visibleWindow(qint64 process, const QString &titlePattern);
/// Asks a window to close, as the close button of its frame does.
void requestClose(quint32 window);

}  // namespace desktop
