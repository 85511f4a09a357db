#pragma once

#include <QObject>

class HttpRequest;
class HttpResponse;

/// The base class of request handlers, which override service(). The creator of the listener owns the handler, which
/// must outlive the listener.
class HttpRequestHandler : public QObject {
    Q_OBJECT

public:
    explicit HttpRequestHandler(QObject *parent = nullptr);
    ~HttpRequestHandler() override;

    /// Responds to one complete request. Called concurrently from the threads of all connections. Both objects belong
    /// to the engine and must not be used after the call. Exceptions are caught and ignored.
    virtual void service(HttpRequest &request, HttpResponse &response);
};
