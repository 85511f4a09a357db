#include "toolkit/widgets/property_editor.h"

#include "toolkit/settings/property_value.h"
#include "toolkit/settings/ui_language.h"
#include "toolkit/widgets/wheel_guard.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QIcon>
#include <QLineEdit>
#include <QLocale>
#include <QMetaEnum>
#include <QSignalBlocker>
#include <QSpinBox>
#include <algorithm>
#include <limits>

namespace {

QString generic(const QString &source) {
    return source.isEmpty() ? QString() : QCoreApplication::translate("Generic", source.toUtf8().constData());
}

class BoolEditor : public PropertyEditor {
public:
    BoolEditor(const PropertyDescriptor &descriptor, QWidget *parent)
        : PropertyEditor(parent), box_(new QCheckBox(parent)) {
        box_->setEnabled(!descriptor.readOnly);
        connect(box_, &QCheckBox::toggled, this, &PropertyEditor::edited);
    }

    QWidget *widget() const override { return box_; }
    QString display(const QVariant &value) const override {
        return value.toBool() ? PropertyEditor::tr("on") : PropertyEditor::tr("off");
    }

    void show(const QVariant &value) override {
        const QSignalBlocker blocker(box_);
        box_->setChecked(value.toBool());
    }

private:
    QCheckBox *box_;
};

/// Returns the number of decimals of a step such as 0.05.
int decimalsOf(double step) {
    const QString text = QString::number(step);
    const int point = text.indexOf('.');
    return point < 0 ? 0 : text.size() - point - 1;
}

void configure(QSpinBox *box, const PropertyDescriptor &descriptor) {
    using Limits = std::numeric_limits<int>;
    box->setRange(static_cast<int>(descriptor.minimum.value_or(Limits::min())),
                  static_cast<int>(descriptor.maximum.value_or(Limits::max())));
    box->setSingleStep(static_cast<int>(descriptor.step.value_or(1)));
}

void configure(QDoubleSpinBox *box, const PropertyDescriptor &descriptor) {
    const double step = descriptor.step.value_or(0.01);
    box->setDecimals(std::max(
        {decimalsOf(step), decimalsOf(descriptor.minimum.value_or(0)), decimalsOf(descriptor.maximum.value_or(0))}));
    box->setRange(descriptor.minimum.value_or(-1e9), descriptor.maximum.value_or(1e9));
    box->setSingleStep(step);
}

/// Edits a number with a QSpinBox or a QDoubleSpinBox. edited() is emitted when the number is complete, not for each
/// key.
template <typename SpinBox, typename Number>
class NumberEditor : public PropertyEditor {
public:
    NumberEditor(const PropertyDescriptor &descriptor, QWidget *parent)
        : PropertyEditor(parent), box_(new SpinBox(parent)), suffix_(descriptor.suffix) {
        configure(box_, descriptor);
        box_->setKeyboardTracking(false);
        box_->setEnabled(!descriptor.readOnly);
        new WheelGuard(box_);
        connect(box_, QOverload<Number>::of(&SpinBox::valueChanged), this,
                [this](Number value) { Q_EMIT edited(value); });
    }

    QWidget *widget() const override { return box_; }

    void show(const QVariant &value) override {
        const QSignalBlocker blocker(box_);
        box_->setValue(value.value<Number>());
    }

    QString display(const QVariant &value) const override {
        QLocale locale = box_->locale();
        locale.setNumberOptions(QLocale::OmitGroupSeparator);
        return locale.toString(value.value<Number>()) + box_->suffix();
    }

    void retranslate() override { box_->setSuffix(suffix_.isEmpty() ? QString() : ' ' + generic(suffix_)); }

private:
    SpinBox *box_;
    QString suffix_;
};

/// Edits an enum or the language with a combo box.
class ChoiceEditor : public PropertyEditor {
public:
    ChoiceEditor(const PropertyDescriptor &descriptor, QWidget *parent)
        : PropertyEditor(parent), descriptor_(descriptor), box_(new QComboBox(parent)) {
        for (const QString &key : keys())
            box_->addItem(label(key), key);
        box_->setEnabled(!descriptor.readOnly);
        new WheelGuard(box_);
        connect(box_, QOverload<int>::of(&QComboBox::activated), this,
                [this](int index) { Q_EMIT edited(box_->itemData(index)); });
    }

    QWidget *widget() const override { return box_; }
    QString display(const QVariant &value) const override { return label(property_value::toText(descriptor_, value)); }

    void show(const QVariant &value) override {
        box_->setCurrentIndex(box_->findData(property_value::toText(descriptor_, value)));
    }

    void retranslate() override {
        for (int i = 0; i < box_->count(); ++i)
            box_->setItemText(i, label(box_->itemData(i).toString()));
    }

private:
    QStringList keys() const {
        if (!descriptor_.property.isEnumType())
            return descriptor_.choices;
        QStringList list;
        const QMetaEnum enumerator = descriptor_.property.enumerator();
        for (int i = 0; i < enumerator.keyCount(); ++i)
            list.append(QString::fromLatin1(enumerator.key(i)));
        return list;
    }

    QString label(const QString &key) const {
        if (descriptor_.property.isEnumType())
            return generic(key).replace('_', ' ');
        const QString language = UiLanguage::nativeName(key);
        return language.isEmpty() ? key : language;
    }

    const PropertyDescriptor descriptor_;
    QComboBox *box_;
};

/// Edits a text, or the text of any other value.
class TextEditor : public PropertyEditor {
public:
    TextEditor(const PropertyDescriptor &descriptor, QWidget *parent)
        : PropertyEditor(parent), descriptor_(descriptor), line_(new QLineEdit(parent)) {
        line_->setReadOnly(descriptor.readOnly);
        if (descriptor.readOnly)
            line_->setStyleSheet(QStringLiteral("background: transparent; border: none;"));
        else
            connect(line_, &QLineEdit::editingFinished, this, [this] { Q_EMIT edited(line_->text()); });
        if (descriptor.isFolder && !descriptor.readOnly)
            addFolderButton();
    }

    QWidget *widget() const override { return line_; }

    QString display(const QVariant &value) const override {
        const QString text = property_value::toText(descriptor_, value);
        return text.isEmpty() ? PropertyEditor::tr("empty") : text;
    }

    void show(const QVariant &value) override {
        line_->setText(property_value::toText(descriptor_, value));
        line_->setToolTip(line_->text());
        line_->setCursorPosition(0);
    }

    void retranslate() override {
        if (chooseFolder_ != nullptr)
            chooseFolder_->setToolTip(PropertyEditor::tr("Choose a folder"));
    }

private:
    void addFolderButton() {
        chooseFolder_ = line_->addAction(QIcon(QStringLiteral(":/icons/folder.svg")), QLineEdit::TrailingPosition);
        connect(chooseFolder_, &QAction::triggered, this, [this] {
            const QString folder = QFileDialog::getExistingDirectory(
                line_->window(), PropertyEditor::tr("Choose a folder"), line_->text());
            if (!folder.isEmpty())
                Q_EMIT edited(QDir::toNativeSeparators(folder));
        });
    }

    const PropertyDescriptor descriptor_;
    QLineEdit *line_;
    QAction *chooseFolder_ = nullptr;
};

}  // namespace

PropertyEditor::PropertyEditor(QWidget *parent) : QObject(parent) {}

PropertyEditor *PropertyEditor::create(const PropertyDescriptor &descriptor, QWidget *parent) {
    if (descriptor.property.isEnumType() || !descriptor.choices.isEmpty())
        return new ChoiceEditor(descriptor, parent);
    switch (descriptor.property.userType()) {
        case QMetaType::Bool:
            return new BoolEditor(descriptor, parent);
        case QMetaType::Int:
            return new NumberEditor<QSpinBox, int>(descriptor, parent);
        case QMetaType::Double:
            return new NumberEditor<QDoubleSpinBox, double>(descriptor, parent);
        default:
            return new TextEditor(descriptor, parent);
    }
}
