#include "toolkit/platform/desktop_entry.h"

#include <QFileInfo>

namespace {

/// Escapes a value of type string.
QString escaped(QString value) {
    value.replace('\\', "\\\\").replace('\n', "\\n").replace('\r', "\\r").replace('\t', "\\t");
    if (value.startsWith(' '))
        value.replace(0, 1, "\\s");
    return value;
}

/// Quotes an argument of the Exec key and escapes field codes such as "%f".
QString execArgument(QString argument) {
    for (const QChar special : {'\\', '"', '`', '$'})
        argument.replace(special, QString('\\') + special);
    return '"' + argument.replace('%', "%%") + '"';
}

}  // namespace

QByteArray desktopEntry(const QString &program) {
    const QFileInfo info(program);
    const QString text =
        QString(
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Version=1.5\n"
            "Name=%1\n"
            "Exec=%2\n"
            "TryExec=%3\n"
            "Path=%4\n"
            "Terminal=false\n")
            .arg(escaped(info.fileName()), escaped(execArgument(program)), escaped(program), escaped(info.path()));
    return text.toUtf8();
}
