#include "frame/endWithApplication.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

namespace {

std::atomic<bool> told{false};
std::atomic<bool> over{false}; // for whoever is left

/** Ends so many milliseconds after it was told to, or when all is over. */
class SlowThread : public QThread
{
public:
    explicit SlowThread(int slowness)
        : milliseconds(slowness)
    {}

protected:
    void run() override
    {
        while (!told)
            msleep(1);
        QElapsedTimer clock;
        clock.start();
        while (!over && !clock.hasExpired(milliseconds))
            msleep(10);
    }

private:
    const int milliseconds;
};

} // namespace

/** What becomes of the pages' threads when the application object goes. */
class EndWithApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void waitsTenSecondsForAll()
    {
        int argc = 1;
        char name[] = "program";
        char *argv[] = {name, nullptr};
        auto application = std::make_unique<QCoreApplication>(argc, argv);
        int stops = 0;
        QStringList gone;
        const auto start = [&](int milliseconds, const QString &called) {
            auto *thread = new SlowThread(milliseconds);
            connect(
                thread, &QObject::destroyed, this, [names = &gone, called] { *names << called; });
            endWithApplication(thread, [&stops] {
                ++stops;
                told = true;
            });
            thread->start();
            return thread;
        };
        start(0, QStringLiteral("quick"));
        start(8500, QStringLiteral("slow"));
        const std::unique_ptr<QThread> slowest(start(60'000, QStringLiteral("slowest")));
        QCOMPARE(stops, 0);

        QElapsedTimer clock;
        clock.start();
        application.reset();
        const auto ended = clock.elapsed();
        const QStringList goneThen = gone;
        over = true;
        QVERIFY(slowest->wait());
        QVERIFY2(ended >= 9900 && ended < 15'000, qPrintable(QString::number(ended)));
        QCOMPARE(stops, 3);
        QCOMPARE(goneThen, (QStringList{QStringLiteral("quick"), QStringLiteral("slow")}));
    }
};

QTEST_APPLESS_MAIN(EndWithApplicationTest)
#include "tst_endwithapplication.moc"
