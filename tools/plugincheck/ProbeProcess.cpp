#include "Probe.h"

#include "desktopTools_p.h"
#include "libraryFile_p.h"

#include <FileProcess.h>
#include <MenuBar.h>
#include <PNListInterface.h>
#include <PluginInterface.h>
#include <ProcessBar_Process.h>
#include <Toolbar_Edit.h>
#include <Toolbar_Move.h>
#include <Toolbar_Select.h>
#include <Toolbar_Tool.h>
#include <ViewWidget.h>
#include <Viewbar_Status.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>

#ifdef Q_OS_UNIX
#    include <dlfcn.h>
#    include <sys/resource.h>
#endif

// What runs in the process that loads one library. It does what pluginMangerBase.cpp does. What it says goes
// line by line into a file, since the library may write to the standard channels, and may end the process at
// any time.

namespace PluginCheck {

namespace {

QString resultFile;

void say(const QString &line)
{
    QFile file(resultFile);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(QString(line).replace('\n', ' ').toUtf8() + '\n');
}

/// What is being thrown, for people.
QString thrown()
{
    try {
        throw;
    } catch (const std::exception &exception) {
        return QString::fromLocal8Bit(exception.what());
    } catch (...) {
        return QStringLiteral("something that is no std::exception");
    }
}

[[noreturn]] void sayThrown()
{
    say(QStringLiteral("threw ")
        + (std::current_exception() ? thrown() : QStringLiteral("nothing, but called std::terminate()")));
    std::_Exit(1);
}

template <typename Interface>
bool implementsToolOf(const PluginMangerInternal::DesktopTool<Interface> &tool, const QString &library,
                      QObject *root)
{
    if (library != QLatin1String(tool.library) || dynamic_cast<Interface *>(root))
        return true;
    say(QStringLiteral("lacks ") + QString::fromLatin1(qobject_interface_iid<Interface *>()));
    return false;
}

/// Whether the root object has what the manager will ask it for.
bool implementsAll(const QString &library, QObject *root)
{
    namespace Tools = PluginMangerInternal::DesktopTools;
    if (!dynamic_cast<PluginInterface *>(root)) {
        say(QStringLiteral("lacks pluginManger.PluginInterface/1.0"));
        return false;
    }
    return implementsToolOf(Tools::fileProcess, library, root)
           && implementsToolOf(Tools::pnList, library, root) && implementsToolOf(Tools::edit, library, root)
           && implementsToolOf(Tools::move, library, root) && implementsToolOf(Tools::select, library, root)
           && implementsToolOf(Tools::tool, library, root) && implementsToolOf(Tools::view, library, root)
           && implementsToolOf(Tools::status, library, root)
           && implementsToolOf(Tools::menuBar, library, root);
}

using PluginMangerInternal::libraryLoadFault;
using PluginMangerInternal::pluginLoadFault;

void loadLibrary(const QString &path)
{
    QLibrary library(path);
    library.setLoadHints(library.loadHints() | QLibrary::ResolveAllSymbolsHint);
    const QString fault = library.isLoaded() ? QString() : libraryLoadFault(path);
    if (fault.isEmpty() && library.load())
        say(QStringLiteral("done"));
    else
        say(QStringLiteral("failed ") + (fault.isEmpty() ? library.errorString() : fault));
}

void loadTool(const QString &path)
{
    QPluginLoader loader(path);
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
    const QString fault =
        loader.metaData().isEmpty() || loader.isLoaded() ? QString() : pluginLoadFault(loader.fileName());
    if (!fault.isEmpty() || !loader.load())
        say(QStringLiteral("failed ") + (fault.isEmpty() ? loader.errorString() : fault));
    else if (implementsAll(path, loader.instance()))
        say(QStringLiteral("done"));
}

}

namespace {

/// The first that is there of those that need no display. A host's own Qt need not have them all.
QByteArray platform()
{
    for (const QString &name : {QStringLiteral("offscreen"), QStringLiteral("minimal")}) {
        for (const QString &folder : QCoreApplication::libraryPaths()) {
            const QDir platforms(folder + QLatin1String("/platforms"));
            if (!platforms.entryList({QStringLiteral("*q%1*").arg(name)}, QDir::Files).isEmpty())
                return name.toLatin1();
        }
    }
    return "offscreen";
}

/// Each host has it loaded, and plug-ins may leave functions to it. It need not be found here.
bool loadManager()
{
#ifdef Q_OS_UNIX
    return pluginLoadFault(QStringLiteral(PLUGINCHECK_MANAGER_LIBRARY)).isEmpty()
           && dlopen(PLUGINCHECK_MANAGER_LIBRARY, RTLD_NOW | RTLD_GLOBAL) != nullptr;
#else
    return false;
#endif
}

void load(const QStringList &arguments)
{
    try {
        if (setNamed(arguments.at(0)) == Set::Desktop)
            loadTool(arguments.at(1));
        else
            loadLibrary(arguments.at(1));
    } catch (...) {
        sayThrown();
    }
}

}

int runProbe(int argc, char **argv)
{
    {
        const QCoreApplication paths(argc, argv);
        qputenv("QT_QPA_PLATFORM", platform());
    }
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(2);
    if (arguments.size() < 3)
        return 2;
#ifdef Q_OS_UNIX
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
#endif
    std::set_terminate(sayThrown);
    resultFile = arguments.at(2);
    const bool hasManager = loadManager();
    QCoreApplication::setLibraryPaths(arguments.mid(3) + QCoreApplication::libraryPaths());
    // What happens before is no fault of the library.
    say(hasManager ? QLatin1String(readyWithManager) : QLatin1String(ready));
    load(arguments);
    // What libraries do at the end of a process is not what is looked at.
    std::fflush(nullptr);
    std::_Exit(0);
}

}
