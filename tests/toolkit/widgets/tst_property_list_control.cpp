#include "support/sample_settings.h"
#include "support/test_main.h"
#include "toolkit/widgets/property_list_control.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>
#include <QWheelEvent>
#include <algorithm>
#include <memory>

class TestPropertyListControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(ocela); }
    void init();
    void groups_rows_by_category();
    void edits_change_the_settings_once();
    void shows_changes_and_resets_to_the_default();
    void the_wheel_does_not_change_unfocused_values();

private:
    template <typename Widget>
    Widget *find(const char *name) const {
        return control_->findChild<Widget *>(name);
    }

    QTemporaryDir folder_;
    std::unique_ptr<SampleSettings> settings_;
    std::unique_ptr<PropertyListControl> control_;
};

void TestPropertyListControl::init() {
    control_.reset();
    settings_ = std::make_unique<SampleSettings>(folder_.filePath("settings.xml"));
    settings_->setLanguage("en_US");
    control_ = std::make_unique<PropertyListControl>(settings_.get());
    control_->show();
    QVERIFY(QTest::qWaitForWindowExposed(control_.get()));
}

void TestPropertyListControl::groups_rows_by_category() {
    QStringList inOrder;
    QList<QLabel *> labels = control_->findChildren<QLabel *>();
    std::sort(labels.begin(), labels.end(), [this](const QLabel *a, const QLabel *b) {
        return a->mapTo(control_.get(), {}).y() < b->mapTo(control_.get(), {}).y();
    });
    for (const QLabel *label : labels)
        inOrder << (label->objectName() == "propertyHeaderLabel" ? "" : "# ") + label->text();
    QVERIFY(!find<QWidget>("LastIndex"));
    QVERIFY(find<QLineEdit>("Folder")->isReadOnly());
    QCOMPARE(inOrder, QStringList({"# Look", "Language", "Gain", "Enabled", "Title", "# Long words", "# Numbers",
                                   "Points", "TimeMs", "Folder"}));
    const PropertyListControl filtered(settings_.get(),
                                       [](const PropertyDescriptor &property) { return property.category == "Look"; });
    QVERIFY(filtered.findChild<QWidget *>("Gain") && !filtered.findChild<QWidget *>("Points"));
}

void TestPropertyListControl::edits_change_the_settings_once() {
    const QSignalSpy changed(settings_.get(), &SampleSettings::changedProperty);
    const auto edit = [this](const char *property, const QList<Qt::Key> &keys) {
        for (const Qt::Key key : keys)
            QTest::keyClick(find<QWidget>(property), key);
        return settings_->getValue(property).toString();
    };
    QCOMPARE(edit("Points", {Qt::Key_Down}), "Mode_9_points");
    QCOMPARE(edit("TimeMs", {Qt::Key_Up}), "2100");
    find<QSpinBox>("TimeMs")->selectAll();
    // The last digit would exceed the range.
    QCOMPARE(edit("TimeMs", {Qt::Key_4, Qt::Key_3, Qt::Key_2, Qt::Key_1, Qt::Key_1}), "2100");
    QCOMPARE(edit("TimeMs", {Qt::Key_Return}), "4321");
    QCOMPARE(edit("Gain", {Qt::Key_Down}), "1.45");
    QCOMPARE(edit("Enabled", {Qt::Key_Space}), "false");
    QCOMPARE(edit("Title", {Qt::Key_A, Qt::Key_B, Qt::Key_Return}), "ab");
    QCOMPARE(edit("Language", {Qt::Key_Up}), "ru_RU");
    QCOMPARE(changed.count(), 7);
}

void TestPropertyListControl::shows_changes_and_resets_to_the_default() {
    settings_->setTimeMs(5000);
    settings_->setFolder("/elsewhere");

    QCOMPARE(find<QSpinBox>("TimeMs")->text(), "5000 ms");
    QCOMPARE(find<QLineEdit>("Folder")->text(), "/elsewhere");

    auto *reset = find<QToolButton>("resetPoints");
    QVERIFY(!reset->isEnabled());

    settings_->setPoints(SampleSettings::Mode_9_points);
    QTest::mouseClick(reset, Qt::LeftButton);
    QCOMPARE(settings_->getPoints(), SampleSettings::Mode_5_points);
    QVERIFY(!reset->isEnabled());
}

void TestPropertyListControl::the_wheel_does_not_change_unfocused_values() {
    find<QCheckBox>("Enabled")->setFocus();
    for (const char *name : {"TimeMs", "Gain", "Points", "Language"}) {
        auto *widget = find<QWidget>(name);
        const QPointF centre = widget->rect().center();
        QWheelEvent wheel(centre, widget->mapToGlobal(centre.toPoint()), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        const QString before = settings_->getValue(name).toString();
        QCoreApplication::sendEvent(widget, &wheel);
        QCOMPARE(settings_->getValue(name).toString(), before);
        QVERIFY(!wheel.isAccepted());
    }
}

OCELA_TEST(TestPropertyListControl)
#include "tst_property_list_control.moc"
