#include "http/http_session_store.h"
#include "support/test_main.h"

#include <QLoggingCategory>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <array>
#include <atomic>
#include <thread>
#include <vector>

/// Session handles, and the store that removes unused sessions.
class TestHttpSessions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void copiesShareTheirData();
    void unusedSessionsExpire();
    void threadsShareAStore();
};

void TestHttpSessions::copiesShareTheirData() {
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

void TestHttpSessions::unusedSessionsExpire() {
    qint64 now = 1000;
    HttpSessionStore store(100, [&now] { return now; });
    QSignalSpy deleted(&store, &HttpSessionStore::sessionDeleted);
    // A receiver may use the store.
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

void TestHttpSessions::threadsShareAStore() {
    // Every session logs its deletion, and Qt Test ignores all messages after the first 2000.
    QLoggingCategory::setFilterRules("ocela.http.debug=false");
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules({}); });
    constexpr int count = 5000;
    HttpSessionStore store(1000000);
    HttpSession shared = store.createSession();
    constexpr int threadCount = 4;
    std::array<std::atomic<int>, threadCount> valueCounts{};
    const auto keyOf = [](int thread, int i) { return QByteArray::number(thread * count + i); };
    const auto work = [&, id = shared.getId()](int thread) {
        for (int i = 0; i < count; ++i) {
            store.getSession(id).setValue(keyOf(thread, i), i);
            valueCounts[thread] = i + 1;
            if (store.getSession(store.createSession().getId()).isNull())
                qFatal("a session was lost");
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back(work, thread);
    // The newest values are next to the ones that are being stored.
    int lostCount = 0;
    for (int thread = 0; valueCounts[thread] < count; thread = (thread + 1) % threadCount) {
        const int newest = valueCounts[thread] - 1;
        lostCount += newest >= 0 && shared.value(keyOf(thread, newest)) != newest ? 1 : 0;
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(lostCount, 0);
    for (int i = 0; i < threadCount * count; ++i)
        QCOMPARE(shared.value(keyOf(0, i)), QVariant(i % count));
}

OCELA_TEST(TestHttpSessions)
#include "tst_http_sessions.moc"
