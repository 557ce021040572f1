#include "support/Rows.h"
#include "transport/SockJSFrame.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

/// Frames as texts: what goes out is what Qt's own JSON writer makes of them. What comes in, as Qt's reader
/// reads it, is in tst_HostileJson.
class tst_SockJSFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesOfAnyLength()
    {
        for (const int length : {0, 1, 1023, 1024, 1025, 2048, 100000, 1000000}) {
            const QString text(length, QLatin1Char('x'));
            const QString escapes = QStringLiteral("\\n").repeated(length);
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1\"]").arg(text)), QStringList(text));
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1\",\"%2\"]").arg(text, escapes)),
                     QStringList({text, QString(length, QLatin1Char('\n'))}));
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1").arg(text)), QStringList());
        }
    }

    void manyMessagesInOneFrame()
    {
        constexpr int count = 20000; // in time and memory that grow with the text, not with its square
        QStringList sent;
        QJsonArray array;
        for (int i = 0; i < count; ++i) {
            sent.append(QStringLiteral("{\"number\":%1}").arg(i));
            array.append(sent.last());
        }
        const QString frame =
            QLatin1Char('a') + QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
        QCOMPARE(SockJSFrame::messages(frame), sent);
    }

    void frameIsThatOfQtsWriter_data()
    {
        columns<QString>();
        const QStringList messages = {
            QString(),
            QStringLiteral("text"),
            QStringLiteral(R"({"type":"ping"})"),
            QStringLiteral("\"\\/\b\f\n\r\t"),
            QStringLiteral("\u0001\u001f\u007f"),
            QStringLiteral("\u00e4\u6f22\U0001f600\u2028<>&"),
            QString(QChar(0xd800)),
            QString(QChar(0xdc00)),
            QChar(0xd83d) + QStringLiteral("x"),
            QLatin1String("a") + QChar(0) + QLatin1String("b"),
        };
        for (int i = 0; i < messages.size(); ++i)
            QTest::addRow("%d", i) << messages.at(i);
    }

    void frameIsThatOfQtsWriter()
    {
        const auto [message] = row<QString>();
        QCOMPARE(SockJSFrame::encode(message),
                 QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson()));
    }

    void blanksAtBracketsAreDropped()
    {
        QCOMPARE(SockJSFrame::encode(QStringLiteral("x[ 1 ]y[  ] [ [ ] ] { }")),
                 QStringLiteral("[\n    \"x[1]y[] [[]] { }\"\n]\n"));
    }
};

QTEST_APPLESS_MAIN(tst_SockJSFrame)
#include "tst_SockJSFrame.moc"
