#pragma once

#include <QAbstractSocket>
#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

class HttpAcceptor;
class HttpConnectionHandlerPool;
class HttpRequestHandler;
class QSettings;
class QTcpServer;

/// A listening TCP server for one or several addresses. Accepts connections in its own thread, so a busy thread of its
/// owner does not delay clients. Passes each connection to a handler, which has its own thread. Must be used in the
/// thread that created it, except for setHosts().
///
/// Settings, read each time they are needed:
/// - "host": addresses separated by spaces; empty: all interfaces. "port" (0: the system chooses).
/// - "minThreads", "maxThreads", "cleanupInterval" (ms): see HttpConnectionHandlerPool.
/// - "readTimeout", "headerTimeout", "rateWindow" (ms), "minBytesPerSecond": see HttpConnectionHandler.
/// - "maxRequestSize", "maxMultiPartSize" (bytes): see HttpRequest. "maxTotalRequestBytes": see HttpServerContext.
/// - "sslKeyFile", "sslCertFile", "caCertFile" and "verifyPeer".
class HttpListener : public QObject {
    Q_OBJECT

public:
    /// Starts listening. Connections are accepted as soon as the event loop of the listener's thread runs. The caller
    /// keeps ownership of `settings`, which must outlive the listener.
    HttpListener(QSettings *settings, std::shared_ptr<HttpRequestHandler> requestHandler, QObject *parent = nullptr);
    ~HttpListener() override;

    /// Starts listening again after close() or a failure. Logs an error on failure; see isListening().
    void listen();
    /// Stops listening and closes all connections. Does not wait for clients. Waits up to two seconds for running
    /// HttpRequestHandler::service() calls. A thread whose call takes longer is left behind, see leftThreadCount().
    void close();
    /// Replaces the setting "host". Connections stay open. Clients that connect during the change are refused. If the
    /// new addresses cannot be used, logs an error and stops listening. Thread-safe: in another thread than the
    /// listener's, the call is queued.
    void setHosts(const QStringList &hosts);

    /// Returns whether all addresses are in use, except for those that this machine does not have.
    [[nodiscard]] bool isListening() const { return !servers_.empty(); }
    [[nodiscard]] QList<QHostAddress> serverAddresses() const;
    /// Returns 0 while the listener is not listening.
    [[nodiscard]] quint16 serverPort() const;
    /// Returns the reason for the last failure.
    [[nodiscard]] QAbstractSocket::SocketError serverError() const { return error_; }
    [[nodiscard]] QString errorString() const { return errorString_; }

    /// Returns the number of threads of this process that close() has left behind and that are still running. They use
    /// only objects that they own. The program must then end without the destructors of global objects. Thread-safe.
    [[nodiscard]] static int leftThreadCount();

private:
    void changeHosts(const QStringList &hosts);
    void startListening(int port);
    void bindAll(const QStringList &hosts, int port);
    [[nodiscard]] bool bind(const QHostAddress &address, quint16 port);
    void startAccepting();
    void stopListening();
    void fail(QAbstractSocket::SocketError error, const QString &reason);

    QSettings *const settings_;
    const std::shared_ptr<HttpRequestHandler> requestHandler_;
    std::optional<QStringList> hosts_;  ///< set by setHosts()
    QAbstractSocket::SocketError error_ = QAbstractSocket::UnknownSocketError;
    QString errorString_;
    std::unique_ptr<HttpConnectionHandlerPool> pool_;
    std::vector<std::unique_ptr<QTcpServer>> servers_;  ///< only listen; the acceptor accepts
    std::unique_ptr<HttpAcceptor> acceptor_;
};
