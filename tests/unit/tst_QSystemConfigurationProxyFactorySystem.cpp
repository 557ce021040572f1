// What is made of the system's answer. No environment can make Qt give several entries, or one without a
// port, so this program stands in for the system itself: its own systemProxyForQuery() is found before Qt's.

#include "support/Rows.h"

#include <CalyxClient/QSystemConfigurationProxyFactory>

#include <QNetworkProxy>
#include <QObject>
#include <QTest>
#include <QUrl>

#include <utility>

namespace {

QList<QNetworkProxy> theSystemsAnswer;
QList<QNetworkProxyQuery> asked;

QNetworkProxy entry(QNetworkProxy::ProxyType type, const char* host, quint16 port, const char* user = "",
                    const char* password = "")
{
    QNetworkProxy proxy(type, QString::fromLatin1(host), port, QString::fromLatin1(user),
                        QString::fromLatin1(password));
    // A port of 0 would have become the type's usual one.
    proxy.setPort(port);
    return proxy;
}

} // namespace

QList<QNetworkProxy> QNetworkProxyFactory::systemProxyForQuery(const QNetworkProxyQuery& query)
{
    asked.append(query);
    return theSystemsAnswer;
}

class tst_QSystemConfigurationProxyFactorySystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        theSystemsAnswer.clear();
        asked.clear();
    }

    void asksForAPublicPlainWebAddress()
    {
        QSystemConfigurationProxyFactory::getPrimaryProxy();
        QSystemConfigurationProxyFactory::getProxyString();
        QVERIFY(asked.size() >= 2);
        for (const QNetworkProxyQuery& query : std::as_const(asked)) {
            QCOMPARE(query.queryType(), QNetworkProxyQuery::UrlRequest);
            QCOMPARE(query.url().scheme(), QStringLiteral("http"));
            QVERIFY(query.url().host().contains(QLatin1Char('.')));
            QVERIFY(query.url().port() == -1 || query.url().port() == 80);
            QCOMPARE(query.url(), asked.first().url());
        }
    }

    void onlyTheFirstEntryCounts_data()
    {
        columns<QList<QNetworkProxy>, QString>();
        const QNetworkProxy none(QNetworkProxy::NoProxy);
        const QNetworkProxy http = entry(QNetworkProxy::HttpProxy, "h.test", 3128);
        const QNetworkProxy caching =
            entry(QNetworkProxy::HttpCachingProxy, "c.test", 3129, "user", "secret");
        const QNetworkProxy socks = entry(QNetworkProxy::Socks5Proxy, "s.test", 65535);
        const QNetworkProxy portless = entry(QNetworkProxy::HttpProxy, "zero.test", 0, "user", "secret");
        QTest::newRow("empty list") << QList<QNetworkProxy>() << "";
        QTest::newRow("no proxy") << QList<QNetworkProxy>{none} << "";
        QTest::newRow("one") << QList<QNetworkProxy>{http} << "h.test:3128";
        QTest::newRow("with credentials") << QList<QNetworkProxy>{caching} << "c.test:3129";
        QTest::newRow("several") << QList<QNetworkProxy>{socks, http, caching, none} << "s.test:65535";
        QTest::newRow("no proxy before one") << QList<QNetworkProxy>{none, http} << "";
        const QNetworkProxy ftp = entry(QNetworkProxy::FtpCachingProxy, "f.test", 21);
        QTest::newRow("of FTP alone") << QList<QNetworkProxy>{ftp, http} << "";
        QTest::newRow("host with port 0") << QList<QNetworkProxy>{portless} << "";
        QTest::newRow("host with port 0 before one") << QList<QNetworkProxy>{portless, http} << "";
    }
    void onlyTheFirstEntryCounts()
    {
        const auto [answer, text] = row<QList<QNetworkProxy>, QString>();
        theSystemsAnswer = answer;
        QCOMPARE(QSystemConfigurationProxyFactory::getProxyString(), text);
        const QNetworkProxy proxy = QSystemConfigurationProxyFactory::getPrimaryProxy();
        QCOMPARE(proxy, text.isEmpty() ? QNetworkProxy(QNetworkProxy::NoProxy) : answer.first());
    }
};

QTEST_GUILESS_MAIN(tst_QSystemConfigurationProxyFactorySystem)
#include "tst_QSystemConfigurationProxyFactorySystem.moc"
