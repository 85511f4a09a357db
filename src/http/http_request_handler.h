#pragma once

#include <QObject>

class HttpRequest;
class HttpResponse;

/// What answers requests: derive from it and override service(). Created and owned by whoever sets up the listener; it
/// outlives the listener.
class HttpRequestHandler : public QObject {
    Q_OBJECT

public:
    explicit HttpRequestHandler(QObject *parent = nullptr);
    ~HttpRequestHandler() override;

    /// Answers one complete request. Called from the connections' threads, several at a time. Both objects are the
    /// engine's and end with the call. An exception that escapes counts as a return.
    virtual void service(HttpRequest &request, HttpResponse &response);
};
