#include "Fixture.h"
#include "OwnMounts.h"

#include "core/MountedDevice.h"

#include <cstdio>

class tst_MountedDevice : public QObject {
    Q_OBJECT

private slots:
    void namesAreEqualWhereARenameSucceeds()
    {
        if (!enterOwnMounts())
            QSKIP("needs mounts of its own, which only root has");
        const Tree tree;
        for (const char *name : {"disk/b", "memory1", "memory2", "view1", "view2", "overlay"})
            tree.folder(name);
        const Mount memory1("tmpfs", tree.path("memory1"), "tmpfs");
        const Mount memory2("tmpfs", tree.path("memory2"), "tmpfs");
        const Mount view1(tree.folder("disk/a"), tree.path("view1"));
        const Mount view2(tree.path("disk/b"), tree.path("view2"));
        tree.folder("memory2/changes/upper");
        tree.file("disk/a/lower");
        const QString layers = "lowerdir=%1,upperdir=%2,workdir=%3";
        const Mount overlay("overlay", tree.path("overlay"), "overlay",
            layers.arg(tree.path("disk/a"), tree.path("memory2/changes"), tree.folder("memory2/work")));

        const auto same = [&](const QString &from, const QString &to) {
            char source[MountedDeviceNameSize] = "", destination[MountedDeviceNameSize] = "";
            const QByteArray file = (QFile::exists(from) ? from : tree.file(from)).toUtf8();
            const QByteArray folder = tree.path(to).toUtf8();
            const bool named =
                mountedDevice(file.constData(), source) && mountedDevice(folder.constData(), destination);
            const bool equal = named && qstrcmp(source, destination) == 0;
            const bool renamed = std::rename(file.constData(), (folder + "/new").constData()) == 0;
            return named && equal == renamed ? (equal ? "equal" : "different") : "wrong";
        };
        QCOMPARE(same("disk/a/file", "disk/b"), "equal");
        QCOMPARE(same("memory1/file", "memory2"), "different");
        QCOMPARE(same("view1/file", "view2"), "different");
        QCOMPARE(same("disk/a/file", "view1"), "different");
        QCOMPARE(same(tree.path("overlay/lower"), "overlay/upper"), "equal");
    }
};

QTEST_GUILESS_MAIN(tst_MountedDevice)
#include "tst_MountedDevice.moc"
