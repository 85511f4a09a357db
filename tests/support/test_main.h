#pragma once

#include <QObject>
#include <QString>
#include <QTest>

/// Registers a QObject test class with the executable it is compiled into:
/// `OCELA_TEST(TestConnectionHelper)` in the class's .cpp, after its definition.
///
/// The common main() runs all registered classes with new, private home and data folders. A warning that was not
/// expected with QTest::ignoreMessage() is a failure.
namespace test_support {

using Factory = QObject *(*)();
bool registerTest(Factory factory);

}  // namespace test_support

#define OCELA_TEST(Class) \
    static const bool registered##Class = test_support::registerTest([]() -> QObject * { return new (Class); });

/// Adds the columns of a table of test data: `dataColumns<int, QString>("count", "text")`.
template <typename... Types, typename... Names>
void dataColumns(Names... names) {
    (QTest::addColumn<Types>(names), ...);
}

/// Adds a row to a table of test data. String literals become a QString.
template <typename... Values>
void dataRow(const char *name, const Values &...values) {
    (QTest::newRow(name) << ... << values);
}
