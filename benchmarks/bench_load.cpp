// bench_load floor|library COUNT DIRECTORY
//
// Loads the libraries 0.dll, 1.dll, ... of a directory once and prints how many nanoseconds that took: by
// hand, or as a set of the CAM manager. A library can be loaded for the first time only once in a process.

#include "benchsupport.h"

#include "pluginManger4CAM.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibrary>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

qint64 loadByHand(const QStringList &names)
{
    QElapsedTimer timer;
    timer.start();
    for (const QString &name : names) {
        auto *const library = new QLibrary(name + QStringLiteral(".dll"));
        library->setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!library->load())
            qFatal("%s", qPrintable(library->errorString()));
    }
    return timer.nsecsElapsed();
}

qint64 loadAsSet(const QStringList &names)
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QElapsedTimer timer;
    timer.start();
    manager->loadAllPlugins();
    const qint64 elapsed = timer.nsecsElapsed();
    for (const QString &name : names) {
        if (!manager->plugin(name + QStringLiteral(".dll")))
            qFatal("%s is not loaded", qPrintable(name));
    }
    return elapsed;
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    if (argc != 4)
        return 2;
    const QDir directory(QString::fromLocal8Bit(argv[3]));
    QStringList names;
    for (int number = 0; number < std::atoi(argv[2]); ++number)
        names += directory.absoluteFilePath(QString::number(number));

    QDir(Bench::directory()).mkpath(QStringLiteral("pluginconfig"));
    Bench::writeFile(Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig4CAM.json"),
                     Bench::config(names));
    qputenv("PLUGINMANGER_PATH", Bench::directory().toUtf8());
    std::printf("%lld\n", std::strcmp(argv[1], "floor") == 0 ? loadByHand(names) : loadAsSet(names));
    return 0;
}
