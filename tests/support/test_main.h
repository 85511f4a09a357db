#pragma once

#include <QObject>
#include <QString>

/// Registers a QObject test class with the executable it is compiled into:
/// `OCELA_TEST(TestConnectionHelper)` in the class's .cpp, after its definition.
///
/// The common main() runs all registered classes with fresh, private home and data folders. A warning that is
/// not announced with QTest::ignoreMessage() fails the run.
namespace test_support {

using Factory = QObject *(*)();
bool registerTest(Factory factory);

}  // namespace test_support

#define OCELA_TEST(Class) \
    static const bool registered##Class = test_support::registerTest([]() -> QObject * { return new (Class); });
