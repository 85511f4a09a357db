#pragma once

#include "toolkit/property_descriptor.h"

#include <QWidget>
#include <vector>

class PropertyEditor;
class QGridLayout;
class QLabel;
class QToolButton;
class QVBoxLayout;
class VTSettings;

/// Shows the settings of one object for editing: a row each, grouped by category, with a button that resets
/// to the default. Which rows there are, and of which kind, follows from the properties' class-info (see
/// vt_property.h): a row is there for a visible property that is editable or read-only.
///
/// Edits go to the settings at once, changes made elsewhere show at once, and so does another language. The
/// settings are not owned and must outlive the control. Labels of property names have the object name
/// "propertyHeaderLabel", the value widgets that of their property, and the reset buttons "reset" in front of
/// it.
class PropertyListControl : public QWidget {
    Q_OBJECT

public:
    explicit PropertyListControl(VTSettings *settings, QWidget *parent = nullptr);

    /// Adds a widget in a last row, below all properties, and takes ownership of it.
    void addRow(QWidget *widget);

protected:
    void changeEvent(QEvent *event) override;

private:
    struct Row {
        PropertyDescriptor descriptor;
        QLabel *label = nullptr;
        PropertyEditor *editor = nullptr;
        QToolButton *reset = nullptr;  ///< null in a read-only row
    };
    struct Category {
        QString name;
        QLabel *label = nullptr;
    };

    void buildLayout();
    void buildRows();
    void buildCategory(const QString &name, const MetaDescriptor &properties);
    void buildRow(const PropertyDescriptor &descriptor);
    QToolButton *buildResetButton(const QString &name);
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
