#include "app/main_window.h"
#include "core/eyetracker_interface.h"
#include "support/test_main.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <memory>

/// Tests what the main window does to keep recordings. The tested tracker is not the selected one.
class TestRecordingKeeper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void asks_before_closing_while_any_tracker_records_data();
    void asks_before_closing_while_any_tracker_records();
    void offers_another_attempt_for_an_unsaved_recording();
    void records_to_the_folder_of_the_settings();

private:
    /// Calls a function in the event loop of the application, because no question can be shown after quit().
    template <typename Function>
    void run(Function function);
    void answerQuestion();

    QTemporaryDir folder_;
    std::unique_ptr<MainWindow> window_;
    Settings *settings_ = nullptr;
    EyetrackerInterface *tracker_ = nullptr;
    QStringList answers_;    ///< the buttons for the next questions; later ones are closed
    QStringList questions_;  ///< the texts and buttons of the questions
};

void TestRecordingKeeper::init() {
    Q_INIT_RESOURCE(ocela);
    QStandardPaths::setTestModeEnabled(true);  // without it, Windows would use the user's real folder
    window_.reset();
    window_ = std::make_unique<MainWindow>();
    settings_ = window_->findChild<Settings *>();
    settings_->setLanguage("en_US");
    tracker_ = window_->findChildren<EyetrackerInterface *>().at(1);
    questions_.clear();
}

template <typename Function>
void TestRecordingKeeper::run(Function function) {
    QTimer answering;
    connect(&answering, &QTimer::timeout, this, &TestRecordingKeeper::answerQuestion);
    answering.start(0);
    QTimer::singleShot(0, this, [&] {
        function();
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
}

void TestRecordingKeeper::answerQuestion() {
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box)
        return;
    const QString answer = answers_.isEmpty() ? QString() : answers_.takeFirst();
    QStringList texts;
    QAbstractButton *chosen = nullptr;
    for (QAbstractButton *button : box->buttons()) {
        texts << button->text();
        if (button->text() == answer)
            chosen = button;
    }
    texts.sort();  // the order on the screen depends on the platform
    questions_ << box->text() + '|' + texts.join('|');
    if (chosen)
        chosen->click();
    else
        box->reject();
}

void TestRecordingKeeper::asks_before_closing_while_any_tracker_records_data() {
    dataColumns<QString, QString, QString, bool, bool>("language", "answer", "question", "closes", "saves");
    const QString english = "A recording is running: gazepoint|Cancel|Discard|Stop and save";
    const QString russian = "Идёт запись: gazepoint|Не сохранять|Остановить и сохранить|Отмена";
    dataRow("save", "en_US", "Stop and save", english, true, true);
    dataRow("discard", "ru_RU", "Не сохранять", russian, true, false);
    dataRow("cancel", "ru_RU", "Отмена", russian, false, false);
    dataRow("question is closed", "en_US", "", english, false, false);
}

void TestRecordingKeeper::asks_before_closing_while_any_tracker_records() {
    QFETCH(QString, language);
    QFETCH(QString, answer);
    QFETCH(bool, closes);
    const QString path = folder_.filePath(QTest::currentDataTag());
    settings_->setLanguage(language);
    tracker_->startRecord(path);
    answers_ = QStringList{answer};
    run([&] {
        QCOMPARE(window_->close(), closes);
        QTEST(questions_.join("; "), "question");
        QCOMPARE(tracker_->isRecording(), !closes);
        QTEST(QFileInfo::exists(path), "saves");
    });
    // The end of the session saves a running recording without a question.
    QCOMPARE(QFileInfo::exists(path), answer != "Не сохранять");
    QCOMPARE(questions_.size(), 1);
}

void TestRecordingKeeper::offers_another_attempt_for_an_unsaved_recording() {
    const QString records = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    QDir().rmdir(records);
    if (QFileInfo::exists(records))
        QSKIP("the files of the logged-in user must not be changed");
    for (int i = 0; i < 2; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*missing.*: .+"));
    const QString text = "A recording could not be saved.|";
    answers_ = QStringList{"Later", "Cancel", "Try again"};
    run([&] {
        tracker_->startRecord(folder_.filePath("missing/r.csv"));
        tracker_->stopRecord();
        QTRY_COMPARE(questions_, QStringList{text + "Choose a folder...|Later|Try again"});
        QVERIFY(!window_->close());
        QVERIFY(window_->close());
        QCOMPARE(questions_.last(), text + "Cancel|Choose a folder...|Discard|Try again");
    });
    // The attempt has created the default folder.
    for (const char *name : {"/r.csv", "/r.json", "/r_samples.csv"})
        QVERIFY(QFile::remove(records + name));
    QVERIFY(QDir().rmdir(records));
}

void TestRecordingKeeper::records_to_the_folder_of_the_settings() {
    const QDir chosen(folder_.filePath("lab/записи"));
    settings_->setRecordsPath(chosen.path());
    tracker_->startRecord();
    settings_->setDescribeRecordings(false);  // applies to the next recording
    tracker_->stopRecord();
    QCOMPARE(chosen.entryList(QDir::Files).size(), 3);
    tracker_->startRecord();
    settings_->resetDescribeRecordings();
    tracker_->stopRecord();
    QCOMPARE(chosen.entryList(QDir::Files).size(), 4);
    settings_->resetRecordsPath();
    tracker_->startRecord();
    tracker_->discardRecord();
    QCOMPARE(chosen.entryList(QDir::Files).size(), 4);
}

OCELA_TEST(TestRecordingKeeper)
#include "tst_recording_keeper.moc"
