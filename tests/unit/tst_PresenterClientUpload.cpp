// Storing a resource on the service.

#include "support/ClientTest.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

namespace {

const char UPLOAD[] = "/tavisto/resource/uploadResourceFile";
const char STORED[] = R"({"data":{"id":"r1","path":"/files/r1"}})";

// What follows the file's bytes, byte for byte: the lines that look superfluous belong there.
const char BEHIND_THE_FILE[] = "\r\n"
                               "------boundary\r\n"
                               "\r\n"
                               "Content-Disposition: form-data; name=isTemporary\r\n"
                               "Content-Type: text/plain; charset=utf-8\r\n"
                               "\r\n"
                               "true\r\n"
                               "------boundary\r\n"
                               "\r\n"
                               "Content-Disposition: form-data; name=clientProvidedGUID\r\n"
                               "Content-Type: text/plain; charset=utf-8\r\n"
                               "\r\n"
                               "false\r\n"
                               "------boundary--\r\n"
                               "\r\n";

struct Upload
{
    QString id = "untouched";
    QString path = "untouched";
    bool done;

    explicit Upload(PresenterClient& client)
        : done(client.doUploadResource("f.png", QByteArray("ABC"), &id, &path))
    {}
};

} // namespace

class tst_PresenterClientUpload : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void sendsTheBody_data()
    {
        QByteArray allBytes;
        for (int byte = 0; byte < 256; ++byte)
            allBytes.append(char(byte));
        rows<QString, QByteArray>({
            {"three bytes", "f.png", "ABC"},
            {"no bytes", "f.png", QByteArray()},
            {"every byte", "f.png", allBytes},
            {"the boundary inside", "f.png", "\r\n------boundary--\r\n"},
            {"large", "f.png", QByteArray(2000000, '\xff')},
            {"quote in the name", "a\"b\".png", "ABC"},
            {"name is not ASCII", "Zoë 🎓.png", "ABC"},
            {"placeholder in the name", "%1%2", "%1"},
            {"no name", QString(), "ABC"},
        });
    }

    void sendsTheBody()
    {
        const auto [fileName, data] = row<QString, QByteArray>();
        service().expect(UPLOAD, Answer::json(STORED));
        QString id;
        QString path;

        QVERIFY(client().doUploadResource(fileName, data, &id, &path));
        const FakeService::Request request = service().last();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("accept-encoding"), QByteArray("identity"));
        QCOMPARE(request.header("content-type"),
                 QByteArray("multipart/form-data; charset=UTF-8; boundary=----boundary"));
        const QByteArray before = "------boundary\r\n"
                                  "Content-Disposition: form-data; name=files; filename=\"" +
                                  fileName.toUtf8() + "\"\r\n\r\n";
        QCOMPARE(request.body, before + data + BEHIND_THE_FILE);
    }

    void multipartValue_data()
    {
        const QString type = "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
        const QString head = "Content-Disposition: form-data; name=";
        rows<QString, QString, bool, QString>({
            {"not the last", "a", "b", false, head + "a" + type + "b\r\n------boundary\r\n\r\n"},
            {"the last", "a", "b", true, head + "a" + type + "b\r\n------boundary--\r\n\r\n"},
            {"empty", "", "", false, head + type + "\r\n------boundary\r\n\r\n"},
            {"placeholders", "%1", "%2%1", true, head + "%1" + type + "%2%1\r\n------boundary--\r\n\r\n"},
            {"quotes", "\"a\"", "\"b\"", false, head + "\"a\"" + type + "\"b\"\r\n------boundary\r\n\r\n"},
        });
    }

    void multipartValue()
    {
        const auto [name, value, last, text] = row<QString, QString, bool, QString>();
        QCOMPARE(client().addMultipartValue(name, value, last), text);
    }

    void givesIdAndDownloadPath_data()
    {
        columns<QByteArray, QString, QString>();

        const auto row = [](const char* name, const char* body, const char* id, const char* path) {
            QTest::newRow(name) << QByteArray(body) << QString::fromUtf8(id) << QString::fromUtf8(path);
        };
        row("both", STORED, "r1", "/files/r1");
        row("id alone", R"({"data":{"id":"r1"}})", "r1", "");
        row("number", R"({"data":{"id":17}})", "17", "");
        row("odd id", R"({"data":{"id":"a b/é%1"}})", "a b/é%1", "");
        row("empty id", R"({"data":{"id":""}})", "", "");
        row("no id", R"({"data":{"path":"/p"}})", "", "/p");
        row("no data", R"({"success":true})", "", "");
        row("no object", "[]", "", "");
        row("refused without HTTP error", R"({"errorMsgKeys":["a.error"]})", "", "");
    }

    void givesIdAndDownloadPath()
    {
        const auto [body, id, resourcePath] = row<QByteArray, QString, QString>();
        service().expect(UPLOAD, Answer::json(body));
        const Upload upload(client());

        QVERIFY(upload.done);
        QCOMPARE(upload.id, id);
        QCOMPARE(upload.path, "/tavisto/resource/downloadResourceFile?resourceId=" + id);
        QCOMPARE(client().resourceId(), id);
        QVERIFY(!client().resourceId().isNull());
        QCOMPARE(client().resourcePath(), resourcePath);
        QVERIFY(client().lastError().isNull());
    }

    void whatIsNotWantedIsNotWritten()
    {
        service().expect(UPLOAD, Answer::json(STORED));

        QVERIFY(client().doUploadResource("f.png", QByteArray("ABC"), nullptr, nullptr));
        QCOMPARE(client().resourceId(), QStringLiteral("r1"));
    }

    void failureTouchesNothing_data()
    {
        rows<Answer>({
            {"http error with an id", Answer::json(STORED, 500)},
            {"http error with an error key", Answer::json(R"({"errorMsgKeys":["upload.error"]})", 500)},
            {"no JSON", Answer::json("<html></html>")},
            {"empty answer", Answer::json("")},
            {"answer cut short", Answer::cut(STORED)},
            {"service gone", Answer::gone()},
        });
    }

    void failureTouchesNothing()
    {
        const auto [answer] = row<Answer>();
        service().expect(UPLOAD, answer);
        const Upload upload(client());

        QVERIFY(!upload.done);
        QCOMPARE(upload.id, QStringLiteral("untouched"));
        QCOMPARE(upload.path, QStringLiteral("untouched"));
        QVERIFY(client().resourceId().isNull());
        QVERIFY(client().resourcePath().isNull());
        QVERIFY(client().lastError().isNull());
    }

    void uploadForgetsTheEarlierResourceFirst()
    {
        bool forgottenMeanwhile = false;
        service().expect(UPLOAD, Answer::json(STORED));
        service().expect(UPLOAD, Answer::json("", 500).then([&] {
            forgottenMeanwhile = client().resourceId().isNull() && client().resourcePath().isNull();
        }));
        QVERIFY(Upload(client()).done);
        QVERIFY(!Upload(client()).done);

        QVERIFY(forgottenMeanwhile);
        QVERIFY(client().resourceId().isNull());
        QVERIFY(client().resourcePath().isNull());
    }

    void handlerLeavesThingsAloneWithoutJson()
    {
        client().uploadResourceResponse(QString::fromLatin1(STORED));
        client().uploadResourceResponse("{\"data\":");

        QCOMPARE(client().resourceId(), QStringLiteral("r1"));
        QCOMPARE(client().resourcePath(), QStringLiteral("/files/r1"));
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientUpload)

#include "tst_PresenterClientUpload.moc"
