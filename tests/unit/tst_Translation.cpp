#include <CalyxClient/Lesson>

#include <QTest>
#include <QTranslator>

class tst_Translation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsComeInTheHostsLanguage_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("text");
        QTest::newRow("German") << QLocale("de_CH") << "Abgebrochen.";
        QTest::newRow("French") << QLocale("fr_CA") << "Annul\u00e9.";
        QTest::newRow("English") << QLocale("en_GB") << "Cancelled.";
        QTest::newRow("none") << QLocale::c() << "Cancelled.";
        QTest::newRow("unknown") << QLocale("fi_FI") << "Cancelled.";
    }
    void textsComeInTheHostsLanguage()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, text);
        QTranslator translator;
        const bool isLoaded = Calyx::Lesson::loadTranslation(&translator, locale);
        QCOMPARE(Calyx::LessonError::make(Calyx::LessonError::Cancelled).text, QStringLiteral("Cancelled."));
        QCOMPARE(isLoaded, text != QLatin1String("Cancelled."));
        if (isLoaded)
            QCoreApplication::installTranslator(&translator);
        QCOMPARE(Calyx::LessonError::make(Calyx::LessonError::Cancelled).text, text);
    }
};

QTEST_GUILESS_MAIN(tst_Translation)
#include "tst_Translation.moc"
