#pragma once

#include "gazepoint/server.h"
#include "subject/subject.h"

#include <QString>
#include <QStringList>
#include <variant>

namespace sim::gazepoint {

/// The options of the command line.
struct Options {
    ServerOptions server;
    SubjectOptions subject;
    QString recordFile;  ///< record file that the subject plays back; empty: none
    QString linesFile;   ///< file with the protocol lines to send; empty: none
    QString truthFile;   ///< file for the true fixations of the subject; empty: none
    bool followMouse = false;
    bool screenIsSet = false;  ///< server.screen is from the command line
    bool help = false;
};

/// Returns the options, or an error message of one line. The first argument is the name of the program.
[[nodiscard]] std::variant<Options, QString> parseOptions(const QStringList &arguments);

/// Returns the text of --help. Needs an application object.
[[nodiscard]] QString helpText();

/// Parses `WxH` or `WxH+X+Y`, where a `-` may replace each `+`. All integers are valid, even if they do not fit an int.
[[nodiscard]] std::optional<Screen> parseScreen(const QString &text);

}  // namespace sim::gazepoint
