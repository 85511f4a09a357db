#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// Environment variables for as long as this lives, "NAME=value" each, joined by spaces.
class ScopedVariables {
public:
    explicit ScopedVariables(const QByteArray &assignments) {
        for (const QByteArray &assignment : assignments.split(' ')) {
            const int separator = assignment.indexOf('=');
            if (separator <= 0)
                continue;
            names_ << assignment.left(separator);
            qputenv(names_.last(), assignment.mid(separator + 1));
        }
    }
    ~ScopedVariables() {
        for (const QByteArray &name : names_)
            qunsetenv(name);
    }
    ScopedVariables(const ScopedVariables &) = delete;
    ScopedVariables &operator=(const ScopedVariables &) = delete;

private:
    QByteArrayList names_;
};
