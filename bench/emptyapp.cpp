#include <QCoreApplication>

/** What a program costs that is linked as ours is and does nothing. */
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
