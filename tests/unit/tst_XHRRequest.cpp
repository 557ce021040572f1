#include <CalyxClient/XHRRequest>

#include <QtTest>

class tst_XHRRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatItIsGiven()
    {
        const XHRRequest request(QStringLiteral("/p/xhr"), QStringLiteral("POST /p/xhr HTTP/1.1\r\n\r\n"));
        QCOMPARE(request.path(), QStringLiteral("/p/xhr"));
        QCOMPARE(request.payload(), QStringLiteral("POST /p/xhr HTTP/1.1\r\n\r\n"));
        QVERIFY(!request.parent());
    }

    void idsCountUp()
    {
        const XHRRequest first(QStringLiteral("/a"), QStringLiteral("x"));
        const XHRRequest second(QStringLiteral("/a"), QStringLiteral("x"));
        QVERIFY(first.requestId() >= 1);
        QCOMPARE(second.requestId(), first.requestId() + 1);
    }

    void knowsNothingOfItsAnswerAtFirst()
    {
        const XHRRequest request(QStringLiteral("/a"), QStringLiteral("x"));
        QVERIFY(!request.isChunked());
        QCOMPARE(request.contentLength(), 0);
    }

    void takesWhatTheAnswerSays()
    {
        XHRRequest request(QStringLiteral("/a"), QStringLiteral("x"));
        request.setChunked(true);
        request.setContentLength(17);
        QVERIFY(request.isChunked());
        QCOMPARE(request.contentLength(), 17);
    }

    void keepsANullPayload() { QVERIFY(XHRRequest(QStringLiteral("/a"), QString()).payload().isNull()); }
};

QTEST_APPLESS_MAIN(tst_XHRRequest)
#include "tst_XHRRequest.moc"
