#include "Fixture.h"

#include "core/GetPathName.h"

class tst_GetPathName : public QObject {
    Q_OBJECT

private slots:
    void bufferGetsWhatFits_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QByteArray>("written");

        const QByteArray path = QCoreApplication::applicationDirPath().toUtf8();
        const QByteArray end(1, '\0');
        QTest::newRow("negative size") << -1 << QByteArray();
        QTest::newRow("no room") << 0 << QByteArray();
        QTest::newRow("room for the end") << 1 << end;
        QTest::newRow("a byte short") << path.size() << path.chopped(1) + end;
        QTest::newRow("just enough") << path.size() + 1 << path + end;
        QTest::newRow("room to spare") << path.size() + 100 << path + end;
    }

    void bufferGetsWhatFits()
    {
        QFETCH(int, size);
        QFETCH(QByteArray, written);
        QByteArray buffer(5000, '#');
        int32_t length = 12345;
        GETINSTALLPATH(buffer.data(), size, &length);
        QCOMPARE(length, int(qstrlen(written)));
        QCOMPARE(buffer, written.leftJustified(5000, '#'));
    }
};

QTEST_GUILESS_MAIN(tst_GetPathName)
#include "tst_GetPathName.moc"
