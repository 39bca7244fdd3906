#include "Fixture.h"

#include "computecontrol/DfProcess.h"

class tst_DfProcess : public QObject {
    Q_OBJECT

private slots:
    void readsTheFourthFieldOfTheSecondLine_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<qint64>("megabytes");

        QTest::newRow("nothing") << QByteArray() << qint64(0);
        QTest::newRow("header only") << QByteArray("head 9 9 2048\n") << qint64(0);
        QTest::newRow("too few fields") << QByteArray("head\nd 1 2048\n") << qint64(0);
        QTest::newRow("almost a megabyte") << QByteArray("head\nd 9 9 1023 9% /\n") << qint64(0);
        QTest::newRow("almost two, many blanks") << QByteArray("head\nd  9   9  2047   9% /") << qint64(1);
        row("eight exabytes", QByteArray("h\nd 9 9 9007199254740992\nd 9 9 1"), qint64(8796093022208));
        QTest::newRow("name with a blank") << QByteArray("head\n//My Disk 9 7777 5555 /\n") << qint64(7);
        QTest::newRow("no number") << QByteArray("head\nd 9 9 2048K 9% /\n") << qint64(0);
        QTest::newRow("too large a number") << QByteArray("h\nd 9 9 9999999999999999999 /\n") << qint64(0);
        QTest::newRow("negative") << QByteArray("head\nd 9 9 -2048 9% /\n") << qint64(-2);
    }

    void readsTheFourthFieldOfTheSecondLine()
    {
        QFETCH(QByteArray, output);
        QFETCH(qint64, megabytes);
        QCOMPARE(CDfProcess::availableMegabytes(output), megabytes);
    }
};

QTEST_GUILESS_MAIN(tst_DfProcess)
#include "tst_DfProcess.moc"
