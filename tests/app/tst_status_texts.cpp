#include "app/status_texts.h"
#include "support/test_main.h"
#include "toolkit/settings/ui_language.h"

using namespace std::chrono_literals;

Q_DECLARE_METATYPE(TrackerStatus)

class TestStatusTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(ocela); }
    void tracker_is_described_in_both_languages_data();
    void tracker_is_described_in_both_languages();
    void recording_has_a_time_and_a_number_of_samples_data();
    void recording_has_a_time_and_a_number_of_samples();
    void markers_are_counted_in_both_languages();
};

void TestStatusTexts::tracker_is_described_in_both_languages_data() {
    dataColumns<TrackerStatus, QString, QString>("status", "english", "russian");
    dataRow("unknown reason", TrackerStatus{}, "Not connected", "Не подключено");
    dataRow("reason", TrackerStatus{false, "XY", 0s, 60.0, 1.0}, "Not connected: XY", "Не подключено: XY");
    dataRow("no sample yet", TrackerStatus{true, {}, 999ms, {}, {}}, "Connected", "Подключено");
    dataRow("live", TrackerStatus{true, {}, 0s, 149.84, 0.969}, "Connected, 149.8 Hz, 97 % valid",
            "Подключено, 149,8 Гц, достоверно 97 %");
    dataRow("silent", TrackerStatus{true, {}, 5900ms, 60.0, 1.0}, "Connected, but no samples for 5 s",
            "Подключено, но данных нет уже 5 с");
    dataRow("silent for hours", TrackerStatus{true, {}, 3661s, {}, {}}, "Connected, but no samples for 01:01:01",
            "Подключено, но данных нет уже 01:01:01");
}

void TestStatusTexts::tracker_is_described_in_both_languages() {
    QFETCH(TrackerStatus, status);
    UiLanguage language;
    language.use("en_US");
    QTEST(StatusTexts(QLocale("en_US")).tracker(status), "english");
    language.use("ru_RU");
    QTEST(StatusTexts(QLocale("ru_RU")).tracker(status), "russian");
}

void TestStatusTexts::recording_has_a_time_and_a_number_of_samples_data() {
    dataColumns<QString, int, int, QString, QString>("locale", "count", "seconds", "running", "saved");
    dataRow("English", "en_US", 114150, 761, "Recording (x) 00:12:41, 114,150 samples",
            "Saved r.csv, 114,150 samples, 12:41");
    dataRow("one sample", "en_US", 1, 0, "Recording (x) 00:00:00, 1 sample", "Saved r.csv, 1 sample, 00:00");
    dataRow("long", "en_US", 2, 100 * 3600 + 59, "Recording (x) 100:00:59, 2 samples",
            "Saved r.csv, 2 samples, 100:00:59");
    dataRow("Russian, one", "ru_RU", 21, 0, "Запись (x) 00:00:00, 21 отсчёт", "Сохранено: r.csv, 21 отсчёт, 00:00");
    dataRow("Russian, few", "ru_RU", 2, 0, "Запись (x) 00:00:00, 2 отсчёта", "Сохранено: r.csv, 2 отсчёта, 00:00");
    dataRow("Russian, many", "ru_RU", 114150, 761, QString("Запись (x) 00:12:41, 114\u00A0150 отсчётов"),
            QString("Сохранено: r.csv, 114\u00A0150 отсчётов, 12:41"));
}

void TestStatusTexts::recording_has_a_time_and_a_number_of_samples() {
    QFETCH(QString, locale);
    QFETCH(int, count);
    QFETCH(int, seconds);
    UiLanguage language;
    language.use(locale);
    const StatusTexts texts{QLocale(locale)};
    const RecordLength length{static_cast<std::size_t>(count), std::chrono::seconds(seconds)};
    QTEST(texts.recording({QString(), {}, length, 0}, "x"), "running");
    QTEST(texts.saved(length, "r.csv"), "saved");
}

void TestStatusTexts::markers_are_counted_in_both_languages() {
    UiLanguage language;
    const auto textsIn = [](const char *locale) {
        const StatusTexts texts{QLocale(locale)};
        QStringList all{texts.markerSet(1234), StatusTexts::markerWithoutRecording()};
        for (const int count : {1, 2, 21})
            all << texts.recording({QString(), {}, {}, count}, QString()).section(", ", -1);
        return all;
    };
    language.use("en_US");
    QCOMPARE(textsIn("en_US"), QStringList({"Marker 1,234 set", "Marker set; no recording is running", "1 marker",
                                            "2 markers", "21 markers"}));
    language.use("ru_RU");
    QCOMPARE(textsIn("ru_RU"), QStringList({QString("Метка 1\u00A0234 поставлена"), "Метка поставлена; запись не идёт",
                                            "1 метка", "2 метки", "21 метка"}));
}

OCELA_TEST(TestStatusTexts)
#include "tst_status_texts.moc"
