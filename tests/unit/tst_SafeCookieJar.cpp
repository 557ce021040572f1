#include "base/SafeCookieJar.h"

#include "support/LogRecorder.h"
#include "support/Rows.h"

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
        columns<QByteArray, QByteArray>();
        const QList<QByteArray> breaking{"\r", "\n", "\r\n", QByteArray(1, '\0')};
        for (const QByteArray& text : breaking) {
            const QByteArray hex = text.toHex();
            QTest::addRow("%s in the value", hex.constData()) << QByteArray("a") << '1' + text + "X: 1";
            QTest::addRow("%s in the name", hex.constData()) << 'a' + text + 'b' << QByteArray("1");
        }
    }

    void controlCharactersAreRefused()
    {
        const auto [name, value] = row<QByteArray, QByteArray>();
        SafeCookieJar jar("[Tag]", nullptr);
        const LogRecorder log;
        QVERIFY(!jar.setCookiesFromUrl({QNetworkCookie(name, value)}, QUrl("http://127.0.0.1/")));
        QCOMPARE(sent(jar, "http://127.0.0.1/"), QByteArray());
        QCOMPARE(log.debug("[Tag] Refused a cookie").size(), 1);
    }

    void harmlessOnesAreKept_data()
    {
        rows<QByteArray, QByteArray>({
            {"plain", "a=1", "a=1;"},
            {"a tab", "a=1\t2", "a=1\t2;"},
            {"a blank", "a=1 2", "a=1 2;"},
            {"beyond ASCII", "a=\xc3\xa4", "a=\xc3\xa4;"},
            {"beside a bad one", "a=1\nb=2\r3\nc=4", "a=1;c=4;"},
            {"its own address as domain", "a=1; Domain=127.0.0.1", "a=1;"},
            {"its own address, a point before it", "a=1; Domain=.127.0.0.1", "a=1;"},
        });
    }

    void harmlessOnesAreKept()
    {
        const auto [header, expected] = row<QByteArray, QByteArray>();
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, header, "http://127.0.0.1/");
        QCOMPARE(sent(jar, "http://127.0.0.1/"), expected);
    }

    void endOfAnAddressIsNoDomain()
    {
        for (const char* domain : {".0.0.1", "0.0.1", ".1", "1", "127.0.0.2", ".127.0.0.1", "local"}) {
            SafeCookieJar jar("[Tag]", nullptr);
            set(&jar, QByteArray("a=1; Domain=") + domain, "http://127.0.0.1/");
            for (const char* other : {"http://10.0.0.1/", "http://127.0.0.2/", "http://x.127.0.0.1/"})
                QVERIFY2(sent(jar, other).isEmpty(), domain);
        }
    }

    void hostOfOneNameKeepsItsOwn()
    {
        for (const char* domain : {"localhost", ".localhost", "LOCALHOST"}) {
            SafeCookieJar jar("[Tag]", nullptr);
            set(&jar, QByteArray("a=1; Domain=") + domain, "http://localhost/");
            QCOMPARE(sent(jar, "http://localhost/"), QByteArray("a=1;"));
            for (const char* other : {"http://host/", "http://otherlocalhost/"})
                QVERIFY2(sent(jar, other).isEmpty(), domain);
        }
    }

    void anotherHostGetsNone()
    {
        for (const char* attribute : {"", "; Domain=school.example", "; Domain=other.example",
                                      "; Domain=example", "; Domain=.example", "; Domain=.", "; Domain="}) {
            SafeCookieJar jar("[Tag]", nullptr);
            set(&jar, QByteArray("a=1") + attribute, "http://school.example/");
            for (const char* other : {"http://other.example/", "http://example/", "http://notschool.example/",
                                      "http://school.example.org/"})
                QVERIFY2(sent(jar, other).isEmpty(), attribute);
        }
    }
};

QTEST_GUILESS_MAIN(tst_SafeCookieJar)
#include "tst_SafeCookieJar.moc"
