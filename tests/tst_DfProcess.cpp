#include "Fixture.h"

#include "computecontrol/DfProcess.h"

class tst_DfProcess : public QObject {
    Q_OBJECT

private slots:
    void readsTheFourthFieldOfTheSecondLine()
    {
        const std::pair<const char *, qint64> outputs[] = {{"", 0}, {"head\nd 1 2048\n", 0},
            {"head\nd 9 9 1023 9% /\n", 0}, {"head\nd  9   9  2047   9% /", 1},
            {"head\nd 9 9 9007199254740992\nd 9 9 1", qint64(1) << 43},
            {"head\n//My Disk 9 7777 5555 /\n", 7}, {"head\nd 9 9 2048K 9% /\n", 0},
            {"head\nd\t9\t9\t2048\t9%\t/\n", 0}};
        for (const auto &[output, megabytes] : outputs)
            QVERIFY2(CDfProcess::availableMegabytes(output) == megabytes, output);
    }
};

QTEST_GUILESS_MAIN(tst_DfProcess)
#include "tst_DfProcess.moc"
