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
    /// to the engine and must not be used after the call. After an exception, the response is empty. If it has
    /// begun already, the connection is closed.
    virtual void service(HttpRequest &request, HttpResponse &response);
};
