#include "base/SafeCookieJar.h"

#include "support/LogRecorder.h"

#include <QNetworkCookie>
#include <QTest>
#include <QUrl>

namespace {

QByteArray sent(const SafeCookieJar& jar, const char* url)
{
    QByteArray text;
    const QList<QNetworkCookie> cookies = jar.cookiesForUrl(QUrl(QLatin1String(url)));
    for (const QNetworkCookie& cookie : cookies)
        text += cookie.toRawForm(QNetworkCookie::NameAndValueOnly) + ';';
    return text;
}

bool set(SafeCookieJar* jar, const QByteArray& header, const char* url)
{
    return jar->setCookiesFromUrl(QNetworkCookie::parseCookies(header), QUrl(QLatin1String(url)));
}

} // namespace

/// Which cookies are kept, and who gets them. What requests carry is in tst_CookiesAndRedirects.
class tst_SafeCookieJar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controlCharactersAreRefused_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        const QList<QByteArray> breaking{"\r", "\n", "\r\n", QByteArray(1, '\0')};
        for (const QByteArray& text : breaking) {
            const QByteArray hex = text.toHex();
            QTest::addRow("%s in the value", hex.constData()) << QByteArray("a") << '1' + text + "X: 1";
            QTest::addRow("%s in the name", hex.constData()) << 'a' + text + 'b' << QByteArray("1");
        }
    }

    void controlCharactersAreRefused()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, value);
        SafeCookieJar jar("[Tag]", nullptr);
        const LogRecorder log;
        QVERIFY(!jar.setCookiesFromUrl({QNetworkCookie(name, value)}, QUrl("http://127.0.0.1/")));
        QCOMPARE(sent(jar, "http://127.0.0.1/"), QByteArray());
        QCOMPARE(log.debug(QStringLiteral("[Tag] Refused a cookie")).size(), 1);
    }

    void harmlessOnesAreKept_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("plain") << QByteArray("a=1") << QByteArray("a=1;");
        QTest::newRow("a tab") << QByteArray("a=1\t2") << QByteArray("a=1\t2;");
        QTest::newRow("a blank") << QByteArray("a=1 2") << QByteArray("a=1 2;");
        QTest::newRow("beyond ASCII") << QByteArray("a=\xc3\xa4") << QByteArray("a=\xc3\xa4;");
        QTest::newRow("beside a bad one") << QByteArray("a=1\nb=2\r3\nc=4") << QByteArray("a=1;c=4;");
        QTest::newRow("its own address as domain")
            << QByteArray("a=1; Domain=127.0.0.1") << QByteArray("a=1;");
        QTest::newRow("its own address, a point before it")
            << QByteArray("a=1; Domain=.127.0.0.1") << QByteArray("a=1;");
    }

    void harmlessOnesAreKept()
    {
        QFETCH(QByteArray, header);
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, header, "http://127.0.0.1/");
        QTEST(sent(jar, "http://127.0.0.1/"), "expected");
    }

    void endOfAnAddressIsNoDomain_data()
    {
        QTest::addColumn<QByteArray>("domain");
        for (const char* domain : {".0.0.1", "0.0.1", ".1", "1", "127.0.0.2", ".127.0.0.1", "local"})
            QTest::newRow(domain) << QByteArray(domain);
    }

    void endOfAnAddressIsNoDomain()
    {
        QFETCH(QByteArray, domain);
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, "a=1; Domain=" + domain, "http://127.0.0.1/");
        for (const char* other : {"http://10.0.0.1/", "http://127.0.0.2/", "http://x.127.0.0.1/"})
            QCOMPARE(sent(jar, other), QByteArray());
    }

    void hostOfOneNameKeepsItsOwn_data()
    {
        QTest::addColumn<QByteArray>("domain");
        for (const char* domain : {"localhost", ".localhost", "LOCALHOST"})
            QTest::newRow(domain) << QByteArray(domain);
    }

    void hostOfOneNameKeepsItsOwn()
    {
        QFETCH(QByteArray, domain);
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, "a=1; Domain=" + domain, "http://localhost/");
        QCOMPARE(sent(jar, "http://localhost/"), QByteArray("a=1;"));
        for (const char* other : {"http://host/", "http://otherlocalhost/"})
            QCOMPARE(sent(jar, other), QByteArray());
    }

    void anotherHostGetsNone_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("no domain") << QByteArray("a=1");
        QTest::newRow("its own") << QByteArray("a=1; Domain=school.example");
        QTest::newRow("another's") << QByteArray("a=1; Domain=other.example");
        QTest::newRow("everybody's") << QByteArray("a=1; Domain=example");
        QTest::newRow("everybody's, with a point") << QByteArray("a=1; Domain=.example");
        QTest::newRow("a point alone") << QByteArray("a=1; Domain=.");
        QTest::newRow("empty") << QByteArray("a=1; Domain=");
    }

    void anotherHostGetsNone()
    {
        QFETCH(QByteArray, header);
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, header, "http://school.example/");
        for (const char* other : {"http://other.example/", "http://example/", "http://notschool.example/",
                                  "http://school.example.org/"})
            QCOMPARE(sent(jar, other), QByteArray());
    }
};

QTEST_GUILESS_MAIN(tst_SafeCookieJar)
#include "tst_SafeCookieJar.moc"
