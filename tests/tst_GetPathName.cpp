#include "Fixture.h"

#include "core/GetPathName.h"

class tst_GetPathName : public QObject {
    Q_OBJECT

private slots:
    void bufferGetsWhatFits()
    {
        const QByteArray path = QCoreApplication::applicationDirPath().toUtf8();
        for (int size : {-1, 0, 1, path.size(), path.size() + 1, path.size() + 100}) {
            QByteArray expected(5000, '#');
            if (size > 0)
                expected.replace(0, qMin(size, path.size() + 1), path.left(size - 1) + '\0');
            QByteArray buffer(5000, '#');
            int32_t length = 12345;
            GETINSTALLPATH(buffer.data(), size, &length);
            QCOMPARE(length, qBound(0, size - 1, path.size()));
            QCOMPARE(buffer, expected);
        }
    }
};

QTEST_GUILESS_MAIN(tst_GetPathName)
#include "tst_GetPathName.moc"
