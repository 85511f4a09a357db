#include "http/http_session_store.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>
#include <thread>

/// Sessions: shared by their handles, dropped by their store when nobody uses them.
class TestHttpSessions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handlesShareOneRecord();
    void invalidSession();
    void unusedSessionsExpire();
    void threadsShareASession();
};

void TestHttpSessions::handlesShareOneRecord() {
    HttpSession first("id", 5);
    HttpSession second;
    second = HttpSession(first);
    second.setValue("key", 1);
    first = HttpSession("other", 6);
    QCOMPARE(second.getId(), QByteArray("id"));
    QCOMPARE(second.getLastAccess(), 5);
    QCOMPARE(second.value("key"), QVariant(1));
    QVERIFY(!first.value("key").isValid());
    QTest::ignoreMessage(QtDebugMsg, "HttpSession: deleting data");
    second = HttpSession();
}

void TestHttpSessions::invalidSession() {
    HttpSession session;
    session.setValue("key", 1);
    session.setLastAccess(1);
    QVERIFY(session.isNull() && session.getId().isEmpty() && !session.value("key").isValid());
    QCOMPARE(session.getLastAccess(), 0);
}

void TestHttpSessions::unusedSessionsExpire() {
    qint64 now = 1000;
    HttpSessionStore store(100, [&now] { return now; });
    QSignalSpy deleted(&store, &HttpSessionStore::sessionDeleted);
    // A receiver that uses the store is not locked out.
    connect(&store, &HttpSessionStore::sessionDeleted, this,
            [&store](const QByteArray &id) { QVERIFY(store.getSession(id).isNull()); });
    const QByteArray unused = store.createSession().getId();
    const QByteArray used = store.createSession().getId();
    QVERIFY(used != unused);

    now += 100;
    store.sessionTimerEvent();
    QCOMPARE(deleted.count(), 0);
    QCOMPARE(store.getSession(used).getLastAccess(), now);
    now += 1;
    store.sessionTimerEvent();
    QCOMPARE(deleted, QList<QVariantList>{{unused}});
    QCOMPARE(store.getSession(used).getId(), used);
}

void TestHttpSessions::threadsShareASession() {
    HttpSessionStore store(1000);
    const QByteArray id = store.createSession().getId();
    const auto use = [&](const QByteArray &key) {
        for (int i = 0; i < 1000; ++i)
            store.getSession(id).setValue(key, i);
    };
    std::thread other(use, "other");
    use("own");
    other.join();
    QCOMPARE(store.getSession(id).value("own"), QVariant(999));
    QCOMPARE(store.getSession(id).value("other"), QVariant(999));
}

OCELA_TEST(TestHttpSessions)
#include "tst_http_sessions.moc"
