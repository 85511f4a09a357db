#include "api/access_policy.h"
#include "api/api_client.h"
#include "api/web_origins.h"
#include "support/test_main.h"

#include <QHostInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

Q_DECLARE_METATYPE(AccessRights)

class TestAccessPolicy : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void refusal_is_sent_instead_of_an_answer();
    void listens_where_clients_may_come_from();
    void origins_are_normalized_data();
    void origins_are_normalized();
};

namespace {

using Answers = QList<bool>;  ///< for each of the policies of requests(): whether the simple API and /api/v1 answer

const Answers all{true, true, true, true, true, true};
const Answers pages{true, false, false, false, true, false};  // what foreign pages may do
const Answers local{true, true, true, true, false, false};    // what other computers may do

AccessRights rightsWith(bool otherComputers, bool foreignPages) {
    AccessRights rights;
    rights.otherComputers = otherComputers;
    rights.foreignPages = foreignPages;
    rights.allowedOrigins = QStringList{"https://lab.example:8443"};
    return rights;
}

}  // namespace

void TestAccessPolicy::requests_data() {
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<QString>("peer");
    QTest::addColumn<Answers>("expected");
    const auto row = [](const char *name, const QByteArray &headers, const Answers &expected,
                        const QString &peer = "127.0.0.1") { QTest::newRow(name) << headers << peer << expected; };
    const QByteArray machine = QHostInfo::localHostName().toLatin1();
    const QByteArray host = "Host: localhost:3735\r\n";
    const QByteArray lab = "Origin: https://lab.example:8443\r\nSec-Fetch-Site: cross-site\r\n";

    row("no headers", "", all);
    row("a program", host, all);
    for (const QByteArray &known :
         {QByteArray("LOCALHOST"), QByteArray("127.0.0.1:3735"), QByteArray("[::1]:3735"), QByteArray("192.0.2.7"),
          QByteArray("[2001:db8::1]"), machine + ":8000", machine.toUpper(), machine + ".local:3735"})
        row("host " + known, "Host: " + known + "\r\n", all);
    for (const QByteArray &other : {QByteArray("attacker.example:3735"), QByteArray("localhost.attacker.example"),
                                    QByteArray("127.0.0.1.attacker.example"), QByteArray("attacker.example@localhost"),
                                    QByteArray("localhost:3735/x"), QByteArray("[::1"), QByteArray(":3735")})
        row("host " + other, "Host: " + other + "\r\n", pages);
    row("rebinding with its own origin", "Host: attacker.example:3735\r\nOrigin: http://attacker.example:3735\r\n",
        pages);

    row("own page", host + "Origin: http://localhost:3735\r\nSec-Fetch-Site: same-origin\r\n", all);
    row("own page, other name", host + "Origin: http://127.0.0.1:3735\r\nSec-Fetch-Site: cross-site\r\n", all);
    row("own page, this machine's name", host + "Origin: http://" + machine + ":3735\r\n", all);
    row("own page at an address", "Host: 192.0.2.7:3735\r\nOrigin: http://192.0.2.7:3735\r\n", all);
    row("own page behind a forwarded port", "Host: localhost:9000\r\nOrigin: http://localhost:9000\r\n", all);
    row("own page by link", host + "Sec-Fetch-Site: none\r\n", all);
    row("allowed page", host + lab, all);
    row("allowed page, rebinding", "Host: attacker.example\r\n" + lab, pages);
    for (const char *origin :
         {"null", "https://attacker.example", "https://lab.example", "http://lab.example:8443", "http://localhost",
          "http://localhost:8080", "https://localhost:3735", "http://192.0.2.7:3735", "http://localhost:3735.x",
          "http://localhost.attacker.example:3735", "http://attacker.example@localhost:3735x", "chrome-extension://a"})
        row(origin, host + "Origin: " + origin + "\r\n", pages);
    row("image of a foreign page", host + "Sec-Fetch-Site: cross-site\r\n", pages);

    for (const char *peer : {"127.0.0.1", "127.8.0.1", "::1", "::ffff:127.0.0.1"})
        row(peer, host, all, peer);
    for (const char *peer : {"192.0.2.1", "::ffff:192.0.2.1", "2001:db8::1", "fe80::1", "0.0.0.0", ""})
        row(*peer ? peer : "unknown peer", "Host: 192.0.2.7:3735\r\n", local, peer);
}

void TestAccessPolicy::requests() {
    QFETCH(const QByteArray, headers);
    QFETCH(const QString, peer);
    QFETCH(const Answers, expected);
    Answers answers;
    AccessPolicy policy;
    const ApiClient client;
    for (const AccessRights &rights : {rightsWith(true, true), rightsWith(true, false), rightsWith(false, true)}) {
        policy.setRights(rights);
        const auto request = client.request("/hello", headers, QHostAddress(peer));
        answers << policy.refusalOfSimpleRequest(*request).isEmpty()
                << policy.refusalOfProgramRequest(*request).isEmpty();
        const QByteArray origin = request->getHeader("Origin");
        const bool isAllowed = !origin.isEmpty() && policy.refusalOfProgramRequest(*request).isEmpty();
        if (isAllowed)
            QCOMPARE(policy.allowedOriginOf(*request), origin);
    }
    QCOMPARE(answers, expected);
}

void TestAccessPolicy::refusal_is_sent_instead_of_an_answer() {
    OcelaHTTPExchange exchange(nullptr, rightsWith(true, false));
    ApiClient client;
    const ApiClient::Reply refused = client.get("/hello", "Origin: https://attacker.example\r\n");
    QVERIFY2(refused.head.startsWith("HTTP/1.1 403 "), refused.head);
    QVERIFY(refused.head.contains("Connection: close\r\n"));
    QVERIFY(!refused.head.contains("Access-Control"));
    QVERIFY(refused.answer()["error"].toString().contains("settings"));

    const ApiClient::Reply allowed = client.get("/hello", "Origin: https://lab.example:8443\r\n");
    QVERIFY2(allowed.head.contains("Access-Control-Allow-Origin: https://lab.example:8443\r\n"), allowed.head);
    QVERIFY(allowed.head.contains("Vary: Origin\r\n"));
    QVERIFY(!client.get("/hello").head.contains("Access-Control"));

    exchange.setAccessRights(rightsWith(false, true));
    QVERIFY(client.get("/hello", QByteArray(), QHostAddress("192.0.2.1")).head.startsWith("HTTP/1.1 403 "));
    QVERIFY(client.get("/hello").head.contains("Access-Control-Allow-Origin: *\r\n"));
}

void TestAccessPolicy::listens_where_clients_may_come_from() {
    OcelaHTTPExchange exchange(nullptr, rightsWith(false, true));
    const auto isReachableAt = [](const QString &address) {
        QTcpSocket client;
        client.connectToHost(address, OcelaHTTPExchange::port);
        return client.waitForConnected(test_support::longWaitMs);
    };
    QTcpServer ipv6;
    const bool hasIpv6 = ipv6.listen(QHostAddress::LocalHostIPv6);
    for (const bool otherComputers : {false, true, false}) {
        exchange.setAccessRights(rightsWith(otherComputers, true));
        QCOMPARE(exchange.listenProblem(), QString());
        QVERIFY(isReachableAt("127.0.0.1"));
        QCOMPARE(isReachableAt("::1"), hasIpv6);
        // Only a server that listens on all interfaces accepts connections to this address.
        QCOMPARE(isReachableAt("127.0.0.2"), otherComputers);
    }
}

void TestAccessPolicy::origins_are_normalized_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("valid");
    QTest::addColumn<QStringList>("invalid");
    const auto row = [](const QString &text, const QStringList &valid, const QStringList &invalid) {
        QTest::newRow(qPrintable(text)) << text << valid << invalid;
    };
    row("", {}, {});
    row(" https://a.example \t http://b.example:8080\n", {"https://a.example", "http://b.example:8080"}, {});
    row("HTTPS://Lab.Example:443/ http://a:80", {"https://lab.example", "http://a"}, {});
    row("http://[::1]:8000 http://127.0.0.1:443", {"http://[::1]:8000", "http://127.0.0.1:443"}, {});
    row(QString::fromUtf8("https://лаб.example"), {"https://xn--80ac2a.example"}, {});
    row("app://ocela-client", {"app://ocela-client"}, {});
    row("lab.example lab.example:80 * null // https:// https://*", {},
        {"lab.example", "lab.example:80", "*", "null", "//", "https://", "https://*"});
    row("https://a/b https://a?b https://a#b https://u@a file:///a https://a:x, https://c", {"https://c"},
        {"https://a/b", "https://a?b", "https://a#b", "https://u@a", "file:///a", "https://a:x,"});
}

void TestAccessPolicy::origins_are_normalized() {
    QFETCH(const QString, text);
    const WebOrigins origins = WebOrigins::parse(text);
    QTEST(origins.valid, "valid");
    QTEST(origins.invalid, "invalid");
}

OCELA_TEST(TestAccessPolicy)
#include "tst_access_policy.moc"
