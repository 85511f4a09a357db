#include "system/program.h"

#include "support/file_content.h"
#include "system/desktop.h"
#include "system/timeout.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

namespace {

bool write(const QString &path, const QByteArray &contents) {
    return QDir().mkpath(QFileInfo(path).path()) && writeFile(path, contents);
}

}  // namespace

Home::Home(const QString &tracker) {
    if (!tracker.isEmpty())
        writeSettings({{"SelectedTracker", tracker}});
}

QProcessEnvironment Home::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", folder_.path());
    // Qt would load and unload an OpenGL driver that leaks memory.
    environment.insert("QT_XCB_GL_INTEGRATION", "none");
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("QT_MESSAGE_PATTERN", "[%{type}] %{category}: %{message}");
    return environment;
}

void Home::writeSettings(const QMap<QString, QString> &properties) const {
    QByteArray xml = "<settings version=\"1\">";
    for (auto property = properties.begin(); property != properties.end(); ++property)
        xml += QString("<property name=\"%1\">%2</property>").arg(property.key(), property.value()).toUtf8();
    writeSettings(xml + "</settings>");
}

void Home::writeSettings(const QByteArray &contents) const {
    QVERIFY(write(settingsFile(), contents));
}

QString Home::readSettings() const {
    return QString::fromUtf8(readFile(settingsFile()));
}

QString Home::readLogFile() const {
    return QString::fromUtf8(readFile(dataFolder() + "/Ocela.log"));
}

QString Home::recordFile() const {
    const QStringList files = QDir(recordsFolder()).entryList({"*_ocela.csv"}, QDir::Files);
    return files.size() == 1 ? recordsFolder() + '/' + files.first() : QString();
}

Program::Program(const Home &home) {
    process_.setProcessEnvironment(home.environment());
    process_.setProgram(OCELA_PROGRAM);
}

Program::~Program() {
    if (!QTest::currentTestFailed())
        return;
    qInfo().noquote() << "The log of the program:\n" + process_.log();
    desktop::save(desktop::screenshot(), QString("failed-") + QTest::currentTestFunction());
}

void Program::setVariable(const QString &name, const QString &value) {
    QProcessEnvironment environment = process_.processEnvironment();
    environment.insert(name, value);
    process_.setProcessEnvironment(environment);
}

void Program::start() {
    process_.start();
}

bool Program::startWindow() {
    start();
    return QTest::qWaitFor([this] { return !window().isEmpty(); }, timeoutMs);
}

QByteArray Program::window(const QString &titlePattern) const {
    return desktop::visibleWindow(process_.processId(), titlePattern);
}

QImage Program::picture() const {
    return desktop::screenshot(window().toUInt());
}

void Program::requestClose() {
    desktop::requestClose(window().toUInt());
}

int Program::close() {
    requestClose();
    return process_.waitForExitCode();
}

QStringList Program::problems() {
    static const QRegularExpression problem(R"(^\[(warning|critical|fatal)\]|Sanitizer|runtime error:)");
    return process_.log().split('\n').filter(problem);
}

void ProgramTest::create(const QString &tracker) {
    home_ = std::make_unique<Home>(tracker);
    program_ = std::make_unique<Program>(*home_);
}

void ProgramTest::checkEnd() {
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->problems(), QStringList());
}
