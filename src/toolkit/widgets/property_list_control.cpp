#include "toolkit/widgets/property_list_control.h"

#include "toolkit/settings/vt_settings.h"
#include "toolkit/widgets/property_editor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

enum Column { labelColumn, editorColumn, resetColumn };

// Limits the distance between labels and values in a wide window.
constexpr int maxContentWidth = 600;
constexpr int columnSpacing = 16;
constexpr int rowSpacing = 6;
constexpr int categorySpacing = 16;
constexpr int rowHeight = 26;  // the height of a combo box, so that all rows have the same height

QString generic(const QString &source) {
    return QCoreApplication::translate("Generic", source.toUtf8().constData());
}

/// Returns the properties of `properties` that have a row, grouped by category. Groups and properties are in order of
/// first appearance.
std::vector<MetaDescriptor> groupedByCategory(const MetaDescriptor &properties,
                                              const PropertyListControl::Filter &filter) {
    std::vector<MetaDescriptor> groups;
    for (const PropertyDescriptor &property : properties) {
        if (!property.visible || !(property.editable || property.readOnly) || !filter(property))
            continue;
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const MetaDescriptor &one) {
            return one.first().category == property.category;
        });
        if (group != groups.end())
            group->append(property);
        else
            groups.push_back({property});
    }
    return groups;
}

}  // namespace

PropertyListControl::PropertyListControl(VTSettings *settings, QWidget *parent)
    : PropertyListControl(
          settings, [](const PropertyDescriptor &) { return true; }, parent) {}

PropertyListControl::PropertyListControl(VTSettings *settings, const Filter &filter, QWidget *parent)
    : QWidget(parent), settings_(settings) {
    buildLayout();
    buildRows(filter);
    retranslate();
    connect(settings_, &VTSettings::changedProperty, this, [this](const QString &name) {
        for (const Row &row : rows_) {
            if (row.descriptor.name == name)
                showValue(row);
        }
    });
}

void PropertyListControl::addRow(QWidget *widget) {
    lastRows_->addWidget(widget, 0, Qt::AlignLeft);
}

void PropertyListControl::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void PropertyListControl::buildLayout() {
    auto *content = new QWidget;
    content->setMaximumWidth(maxContentWidth);
    grid_ = new QGridLayout(content);
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(columnSpacing);
    grid_->setVerticalSpacing(rowSpacing);
    grid_->setColumnStretch(editorColumn, 1);

    auto *leftAligned = new QHBoxLayout;
    leftAligned->addWidget(content, 1);
    leftAligned->addStretch();
    lastRows_ = new QVBoxLayout;
    lastRows_->setSpacing(rowSpacing);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(categorySpacing);
    outer->addLayout(leftAligned);
    outer->addLayout(lastRows_);
    outer->addStretch();
}

void PropertyListControl::buildRows(const Filter &filter) {
    for (const MetaDescriptor &group : groupedByCategory(settings_->metaDescriptor(), filter))
        buildCategory(group.first().category, group);
}

void PropertyListControl::buildCategory(const QString &name, const MetaDescriptor &properties) {
    if (!name.isEmpty()) {
        auto *header = new QLabel(this);
        header->setObjectName(QStringLiteral("categoryHeaderLabel"));
        header->setStyleSheet(QStringLiteral("font-weight: bold;"));
        header->setContentsMargins(0, categories_.empty() ? 0 : categorySpacing, 0, 0);
        grid_->addWidget(header, grid_->rowCount(), labelColumn, 1, -1);
        categories_.push_back({name, header});
    }
    for (const PropertyDescriptor &property : properties)
        buildRow(property);
}

void PropertyListControl::buildRow(const PropertyDescriptor &descriptor) {
    auto *label = new QLabel(this);
    label->setObjectName(QStringLiteral("propertyHeaderLabel"));
    PropertyEditor *editor = PropertyEditor::create(descriptor, this);
    editor->widget()->setObjectName(descriptor.name);
    label->setBuddy(editor->widget());
    QToolButton *reset = descriptor.readOnly ? nullptr : buildResetButton(descriptor.name);

    const int line = grid_->rowCount();
    grid_->setRowMinimumHeight(line, rowHeight);
    grid_->addWidget(label, line, labelColumn);
    grid_->addWidget(editor->widget(), line, editorColumn);
    if (reset != nullptr)
        grid_->addWidget(reset, line, resetColumn);

    QLabel *explanation = descriptor.explanation.isEmpty() ? nullptr : buildExplanation();

    const Row row{descriptor, label, editor, reset, explanation};
    rows_.push_back(row);
    connect(editor, &PropertyEditor::edited, this, [this, row](const QVariant &value) { edit(row, value); });
    showValue(row);
}

QToolButton *PropertyListControl::buildResetButton(const QString &name) {
    auto *button = new QToolButton(this);
    button->setObjectName("reset" + name);
    button->setAutoRaise(true);
    button->setIcon(QIcon(QStringLiteral(":/icons/reset.svg")));
    connect(button, &QToolButton::clicked, this, [this, name] { settings_->resetValue(name); });
    return button;
}

QLabel *PropertyListControl::buildExplanation() {
    auto *label = new QLabel(this);
    label->setObjectName(QStringLiteral("propertyExplanationLabel"));
    label->setStyleSheet(QStringLiteral("color: #666;"));
    label->setWordWrap(true);
    label->setContentsMargins(0, 0, 0, rowSpacing);
    grid_->addWidget(label, grid_->rowCount(), labelColumn, 1, -1);
    return label;
}

void PropertyListControl::edit(const Row &row, const QVariant &value) {
    if (!settings_->setValue(row.descriptor.name, value))
        showValue(row);
}

void PropertyListControl::showValue(const Row &row) {
    row.editor->show(settings_->getValue(row.descriptor.name));
    if (row.reset != nullptr)
        row.reset->setEnabled(!settings_->isDefault(row.descriptor));
}

void PropertyListControl::retranslate() {
    for (const Category &category : categories_)
        category.label->setText(generic(category.name));
    for (const Row &row : rows_)
        retranslateRow(row);
}

void PropertyListControl::retranslateRow(const Row &row) {
    const QString name = generic(row.descriptor.displayName);
    row.label->setText(name);
    row.editor->widget()->setAccessibleName(name);
    if (row.explanation != nullptr) {
        row.explanation->setText(generic(row.descriptor.explanation));
        row.editor->widget()->setAccessibleDescription(row.explanation->text());
    }
    row.editor->retranslate();
    if (row.reset == nullptr)
        return;
    const QString defaultText = row.editor->display(settings_->defaultValue(row.descriptor.name));
    row.reset->setToolTip(tr("Reset to default: %1").arg(defaultText));
    row.reset->setAccessibleName(row.reset->toolTip());
}
