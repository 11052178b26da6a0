#include "frame/window/graphicalMode.h"
#include "platform/platform.h"
#include "tests/support/DeviceTest.h"

#include <QFileDialog>
#include <QListView>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace support;

namespace {

bool writeFile(const char *path, const std::string &text)
{
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && write(file, text.data(), text.size()) == ssize_t(text.size());
    if (file >= 0)
        close(file);
    return written;
}

/** A view of the file system of our own, in which anybody may mount. Before any thread. */
bool enterOwnMounts()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", user + " " + user + " 1") &&
           writeFile("/proc/self/gid_map", group + " " + group + " 1") &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("memory", "/media", "tmpfs", 0, nullptr) == 0;
}

/** Makes a drive of memory there, as when a stick is plugged in. */
bool plugIn(const char *folder)
{
    return mkdir(folder, 0755) == 0 && mount("memory", folder, "tmpfs", 0, nullptr) == 0;
}

bool hasOwnMounts = false;

} // namespace

/** The removable drives in Qt's file dialog. */
class DrivesTest : public DeviceTest
{
    Q_OBJECT

private:
    /** The places in the side bar of a dialog that shows now, without Qt's own. */
    static QStringList offered()
    {
        QFileDialog dialog;
        dialog.show();
        QStringList drives;
        for (const QUrl &place : dialog.sidebarUrls()) {
            if (platform::isRemovableDrivePath(place.toLocalFile()))
                drives << place.toLocalFile();
        }
        return drives;
    }

private slots:
    void initTestCase()
    {
        setApplicationLook();
        if (!hasOwnMounts)
            QSKIP("This system lets users mount nothing.");
    }

    void comeAndGo()
    {
        QCOMPARE(platform::removableDrives(), QStringList());
        QVERIFY(plugIn("/media/STICK 1"));
        QVERIFY(plugIn("/media/CARD"));
        const QStringList both{"/media/CARD"_s, "/media/STICK 1"_s};
        QCOMPARE(platform::removableDrives(), both);
        QCOMPARE(offered(), both);
        QCOMPARE(offered(), both); // Qt keeps the side bar
        QCOMPARE(umount("/media/CARD"), 0);
        QCOMPARE(offered(), QStringList{"/media/STICK 1"_s});
        QCOMPARE(umount("/media/STICK 1"), 0);
        QCOMPARE(offered(), QStringList());
    }

    void paths()
    {
        QVERIFY(platform::isRemovableDrivePath("/media/STICK"_s));
        QVERIFY(platform::isRemovableDrivePath("/run/media/user/STICK"_s));
        QVERIFY(!platform::isRemovableDrivePath("/media"_s));
        QVERIFY(!platform::isRemovableDrivePath("/home/media/STICK"_s));
    }
};

int main(int argc, char *argv[])
{
    hasOwnMounts = enterOwnMounts();
    prepareEnvironment();
    QApplication application(argc, argv);
    DrivesTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_drives_posix.moc"
