#include "frame/TabIndex.h"
#include "frame/VornSettings.h"
#include "frame/tabDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/SkippedPauses.h"

#include <QFile>
#include <QTimer>

#include <filesystem>

/** Thousands of page changes leave nothing behind. */
class SoakTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void pageChangesLeaveNothingBehind();

private:
    struct Use {
        qsizetype objects;
        qsizetype runningTimers;
        qsizetype windows;
        std::ptrdiff_t descriptors;
    };
    static Use use(const QObject &window);
    [[maybe_unused]] static double residentMegabytes();
    /** Handles created and not released since the last time. */
    int openHandles();
};

SoakTest::Use SoakTest::use(const QObject &window)
{
    const auto timers = window.findChildren<QTimer *>();
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return {window.findChildren<QObject *>().size(),
        std::count_if(timers.begin(), timers.end(), [](const QTimer *t) { return t->isActive(); }),
        QApplication::topLevelWidgets().size(), std::distance(begin(open), end(open))};
}

double SoakTest::residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * 4096 / 1e6;
}

int SoakTest::openHandles()
{
    const QStringList lines = calls();
    return int(lines.filter(QStringLiteral("_create()")).size() -
               lines.filter(QStringLiteral("_release()")).size());
}

void SoakTest::pageChangesLeaveNothingBehind()
{
    const support::SkippedPauses pauses;
    // The CAN page lists a rate that isn't among its own anew each time, which is as it should be.
    VornSettings window(nullptr, Qt::WindowFlags());
    window.show();
    const auto change = [&window](int count) {
        for (int i = 0; i < count; ++i) {
            window.showTab(i % tabCount);
            if (i % tabCount == 0)
                QCoreApplication::processEvents();
        }
        window.showTab(0);
        QCoreApplication::processEvents();
    };
    change(10 * tabCount); // what is made once is made now
    calls();
    const Use before = use(window);
    [[maybe_unused]] const double megabytes = residentMegabytes();
    for (int round = 0; round < 50; ++round) {
        change(100);
        QCOMPARE(openHandles(), 0);
    }
    const Use after = use(window);
    QCOMPARE(after.objects, before.objects);
    QCOMPARE(after.runningTimers, before.runningTimers);
    QCOMPARE(after.windows, before.windows);
    QVERIFY2(after.descriptors <= before.descriptors, // some of the toolkit's close late
        qPrintable(QStringLiteral("%1 after %2").arg(after.descriptors).arg(before.descriptors)));
#if !defined(__SANITIZE_ADDRESS__) // which keeps what was freed for a while
    const double grown = residentMegabytes() - megabytes;
    QVERIFY2(grown < 8, qPrintable(QStringLiteral("grown by %1 MB").arg(grown)));
#endif
}

VORN_TEST_MAIN(SoakTest)
#include "tst_soak.moc"
