#include "bench/firstpaint.h"
#include "frame/window/graphicalMode.h"

#include <QCoreApplication>

#include <cstdlib>

namespace {

/** The menu stands; what comes after it isn't measured. */
void endAtMenu()
{
    afterFirstPaint([] { std::_Exit(EXIT_SUCCESS); });
}
Q_COREAPP_STARTUP_FUNCTION(endAtMenu)

} // namespace

/** The program as it starts, up to the first menu on the screen. */
int main(int argc, char *argv[])
{
    return runGraphicalMode(argc, argv);
}
