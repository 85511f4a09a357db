#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>

/// The virtual screen as a person has it: eyes to read what is shown, a hand on mouse and keyboard.
namespace desktop {

/// How a text is dressed: as in the program's window, or as in a box from before the style is applied.
enum class Look { Program, Plain };

/// Of one window, or of the whole screen.
[[nodiscard]] QImage screenshot(quint32 window = 0);
/// Keeps a screenshot for people to look at, in the build's folder of artefacts.
void keep(const QImage &screen, const QString &name);

/// Where the text stands by itself on the screen; an empty rectangle when it is not to be seen.
[[nodiscard]] QRect find(const QString &text, const QImage &screen, Look look = Look::Program);
[[nodiscard]] bool shows(const QString &text, Look look = Look::Program);
[[nodiscard]] bool showsAll(const QStringList &texts, const QImage &screen);
/// Waits for the text to be seen.
[[nodiscard]] bool waitFor(const QString &text, Look look = Look::Program);
/// How many pixels have just this colour.
[[nodiscard]] int count(QRgb colour, const QImage &picture);
/// Whether the connection indicator has this colour.
[[nodiscard]] bool showsIndicator(QRgb colour);

/// Waits for the text and clicks on it; false when it does not appear.
[[nodiscard]] bool click(const QString &text);
void click(QPoint position);
void press(const QString &key, const QByteArray &window = QByteArray());

[[nodiscard]] QByteArray visibleWindow(qint64 process, const QString &titlePattern);
/// Asks for the end of a window by the window managers' protocol.
void requestClose(quint32 window);

}  // namespace desktop
