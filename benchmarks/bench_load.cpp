// bench_load loop|floor|library COUNT DIRECTORY
//
// Loads the libraries 0.dll, 1.dll, ... of a directory once and prints how many nanoseconds that took: in a
// bare loop; by hand, which is the loop with what a set cannot do without, reading its list before and
// logging its line after; or as a set of the CAM manager. A library can be loaded for the first time only
// once in a process.

#include "benchsupport.h"

#include "pluginManger4CAM.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLibrary>
#include <QtCore/QTextCodec>

#include <glog/logging.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

QString listFile()
{
    return Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig4CAM.json");
}

void loadInLoop(const QStringList &names)
{
    for (const QString &name : names) {
        auto *const library = new QLibrary(name + QStringLiteral(".dll"));
        library->setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!library->load())
            qFatal("%s", qPrintable(library->errorString()));
    }
}

void loadByHand()
{
    QFile file(listFile());
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the list cannot be read");
    QStringList names;
    for (const QJsonValue &entry : QJsonDocument::fromJson(file.readAll()).object()["pluginList"].toArray())
        names += entry.toObject()["name"].toString();
    loadInLoop(names);
    const QString line = QStringLiteral("加载所有插件成功");
    LOG(INFO) << QTextCodec::codecForName("GBK")->fromUnicode(line).toStdString();
}

qint64 nanosecondsOf(const std::function<void()> &load)
{
    QElapsedTimer timer;
    timer.start();
    load();
    return timer.nsecsElapsed();
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
    Bench::writeFile(listFile(), Bench::config(names));
    qputenv("PLUGINMANGER_PATH", Bench::directory().toUtf8());
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    LOG(INFO) << "A host has opened its log by the time that it loads plug-ins.";

    const QByteArray kind = argv[1];
    if (kind == "loop") {
        std::printf("%lld\n", nanosecondsOf([&] { loadInLoop(names); }));
    } else if (kind == "floor") {
        std::printf("%lld\n", nanosecondsOf(loadByHand));
    } else {
        std::printf("%lld\n", nanosecondsOf([&] { manager->loadAllPlugins(); }));
        for (const QString &name : names) {
            if (!manager->plugin(name + QStringLiteral(".dll")))
                qFatal("%s is not loaded", qPrintable(name));
        }
    }
    return 0;
}
