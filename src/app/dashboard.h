#pragma once

/// The dashboard, which is a page of the HTTP API. GUI thread.
namespace dashboard {

/// Opens the dashboard in the browser. Shows a message box if that is not possible.
void open();

}  // namespace dashboard
