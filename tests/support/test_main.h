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

/// The longest wait for something that normally takes milliseconds. A busy machine may stop for many seconds.
constexpr int longWaitMs = 30000;

}  // namespace test_support

// Qt's versions wait for 5 s.
#undef QTRY_VERIFY
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, test_support::longWaitMs)
#undef QTRY_VERIFY2
#define QTRY_VERIFY2(condition, message) QTRY_VERIFY2_WITH_TIMEOUT(condition, message, test_support::longWaitMs)
#undef QTRY_COMPARE
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, test_support::longWaitMs)

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
