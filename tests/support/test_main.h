#pragma once

#include <QObject>
#include <QString>

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
