#pragma once

#include "support/test_main.h"

#include <QByteArrayList>

/// Sets environment variables until it is destroyed: "NAME=value", separated by spaces.
class ScopedVariables {
public:
    explicit ScopedVariables(const QByteArray &assignments) {
        for (const QByteArray &assignment : assignments.simplified().split(' ')) {
            names_ << assignment.split('=').first();
            qputenv(names_.last(), assignment.mid(names_.last().size() + 1));
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

/// A table of faults: the environment variables and the expected outcome.
inline void faultColumns() {
    dataColumns<QByteArray, QString>("variables", "outcome");
}
inline void faultRow(const char *name, const QByteArray &variables, const QString &outcome) {
    QTest::newRow(name) << variables << outcome;
}
