#pragma once

#include "gazepoint/server.h"
#include "subject/subject.h"

#include <QString>
#include <QStringList>
#include <variant>

namespace sim::gazepoint {

/// What the command line asks for.
struct Options {
    ServerOptions server;
    SubjectOptions subject;
    QString recordFile;  ///< the recording that the subject acts out; empty: none
    QString linesFile;   ///< the recorded protocol lines to send; empty: none
    bool followMouse = false;
    bool help = false;
};

/// The options, or the reason (one line) why these arguments make no sense. `arguments` begin with the
/// program's name.
std::variant<Options, QString> parseOptions(const QStringList &arguments);

/// The text of --help; needs an application object.
QString helpText();

/// A screen as `WxH`, `WxH+X+Y` or `WxH-X+Y`; any integers, even those that are no sensible size.
std::optional<Screen> parseScreen(const QString &text);

}  // namespace sim::gazepoint
