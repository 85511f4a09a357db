#pragma once

#include <QString>

/// The dashboard, which is a page of the HTTP API. GUI thread.
namespace dashboard {

/// Opens the dashboard in the browser. Shows a message box if that is not possible.
void open();

/// Opens a record file of the records folder in the record viewer. Shows a message box if that is not possible.
void openRecording(const QString &fileName);

/// Opens the page that measures the accuracy of a calibration. Shows a message box if that is not possible.
void openValidation();

}  // namespace dashboard
