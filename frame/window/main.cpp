#include "frame/window/graphicalMode.h"
#include "platform/platform.h"
#include "report/factoryDefaults.h"
#include "report/systemReport.h"

#include <QCoreApplication>

#include <cstring>

namespace {

/** The modes without a window keep the standard error stream for the device's failures: nobody is
 *  there to act on what the toolkit thinks of the user's locale. */
void dropToolkitWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        platform::printErrorLine(message);
}

} // namespace

int main(int argc, char *argv[])
{
    platform::ensureStandardStreams();

    if (argc == 3 && std::strcmp(argv[1], "--systemreport") == 0) {
        qInstallMessageHandler(dropToolkitWarnings);
        const auto path = platform::fileArgument(2, argv); // before any may be taken away
        QCoreApplication application(argc, argv);
        writeSystemReport(path);
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--factorydefault") == 0) {
        qInstallMessageHandler(dropToolkitWarnings);
        QCoreApplication application(argc, argv);
        applyFactoryDefaults();
        return 0;
    }
    return runGraphicalMode(argc, argv);
}
