#pragma once

#include "toolkit/settings/property_descriptor.h"

#include <QWidget>
#include <functional>
#include <vector>

class PropertyEditor;
class QGridLayout;
class QLabel;
class QToolButton;
class QVBoxLayout;
class VTSettings;

/// Edits settings. Each visible property that is editable or read-only has a row with a label and an editor. Unless the
/// property is read-only, a button resets the value to its default. The rows are grouped by category. A property with
/// an explanation has a second row. See vt_property.h for the class-info. GUI thread.
///
/// An edit changes the settings immediately, and the control shows all changes of the settings. The settings are not
/// owned and must outlive the control.
///
/// Object names: "categoryHeaderLabel" for the categories, "propertyHeaderLabel" for the labels,
/// "propertyExplanationLabel" for the explanations, the property's name for the editors, and "reset" followed by the
/// property's name for the reset buttons.
class PropertyListControl : public QWidget {
    Q_OBJECT

public:
    using Filter = std::function<bool(const PropertyDescriptor &property)>;

    explicit PropertyListControl(VTSettings *settings, QWidget *parent = nullptr);
    /// Shows only the properties for which `filter` returns true.
    PropertyListControl(VTSettings *settings, const Filter &filter, QWidget *parent = nullptr);

    /// Adds a widget below all properties and takes ownership of it.
    void addRow(QWidget *widget);

    /// Returns whether no property has a row.
    [[nodiscard]] bool isEmpty() const { return rows_.empty(); }

protected:
    void changeEvent(QEvent *event) override;

private:
    struct Row {
        PropertyDescriptor descriptor;
        QLabel *label = nullptr;
        PropertyEditor *editor = nullptr;
        QToolButton *reset = nullptr;   ///< null in a read-only row
        QLabel *explanation = nullptr;  ///< null without an explanation
    };
    struct Category {
        QString name;
        QLabel *label = nullptr;
    };

    void buildLayout();
    void buildRows(const Filter &filter);
    void buildCategory(const QString &name, const MetaDescriptor &properties);
    void buildRow(const PropertyDescriptor &descriptor);
    QToolButton *buildResetButton(const QString &name);
    QLabel *buildExplanation();
    void edit(const Row &row, const QVariant &value);
    void showValue(const Row &row);
    void retranslate();
    void retranslateRow(const Row &row);

    VTSettings *settings_;
    QGridLayout *grid_ = nullptr;
    QVBoxLayout *lastRows_ = nullptr;
    std::vector<Category> categories_;
    std::vector<Row> rows_;
};
