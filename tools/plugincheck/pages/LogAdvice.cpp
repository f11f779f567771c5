#include "LogAdvice.h"

using namespace PluginCheck;

namespace {

struct Reason
{
    /// What stands in the loader's reason.
    const char *part;
    const char *meaning;
    const char *next;
};

constexpr char needsAnother[] = "a library that the plug-in needs is not found: the one named in the reason";
constexpr char needsAnotherNext[] = "Put that library where the plug-in is, or install the package that has "
                                    "it. \"ldd\" lists all that is missing.";

/// The first that fits counts.
constexpr Reason reasons[] = {
    {"undefined symbol", "the plug-in wants a function that no library has, or another version of one",
     "Ship the plug-in together with the libraries it was built with; rebuild it with "
     "pluginmanger_add_plugin, which "
     "refuses this when linking."},
    {"wrong ELF class", "the plug-in was built for another word size than the host",
     "Replace it by a build for the host's machine."},
    {"file too short", "the file is cut off or empty",
     "Copy it anew, and compare its size with the original."},
    {"invalid ELF header", "the file is not a library", "Copy the library anew."},
    {"not an ELF object", "the file is not a library", "Copy the library anew."},
    {"wrong cpu architecture", "the plug-in was built for another machine than the host",
     "Replace it by a build for the host's machine."},
    {"invalid ELF object", "the file is cut off or damaged",
     "Copy it anew, and compare its size with the original."},
    {"not a regular file", "the file is no file, but a FIFO", "Take it away, and copy the library anew."},
    {"cannot read file data", "the file cannot be read: a directory, or a damaged disk",
     "Look at the file itself."},
    {"incompatible Qt library",
     "the plug-in was built with a newer Qt, or with debug against release libraries",
     "Rebuild it with the host's Qt."},
    {"not a valid Qt plugin", "a plain library is listed in the desktop set",
     "List it in a CAM or DFM set, or build it with QT_PLUGIN."},
    {"not a Qt plugin", "a plain library is listed in the desktop set",
     "List it in a CAM or DFM set, or build it with QT_PLUGIN."},
    {"plugin meta data", "a plain library is listed in the desktop set",
     "List it in a CAM or DFM set, or build it with QT_PLUGIN."},
    {"plugin verification data mismatch", "a plain library is listed in the desktop set",
     "List it in a CAM or DFM set, or build it with QT_PLUGIN."},
    {"shared library was not found", "the Qt plug-in is in none of the folders where Qt looks",
     "Put it beside the host's other plug-ins, or add its folder with QCoreApplication::addLibraryPath()."},
    {"ermission denied", "the host's user may not read the file",
     "Give read permission for the file and its folders."},
    {"ccess is denied", "the host's user may not read the file",
     "Give read permission for the file and its folders."},
    {"拒绝访问", "the host's user may not read the file",
     "Give read permission for the file and its folders."},
    {"static TLS block", "too many libraries with thread-local variables are loaded",
     "Load this library earlier, or build it with -ftls-model=global-dynamic."},
    {"specified procedure could not be found",
     "the plug-in wants a function that a library of another version has",
     "Ship the plug-in together with the libraries it was built with."},
    {"找不到指定的程序", "the plug-in wants a function that a library of another version has",
     "Ship the plug-in together with the libraries it was built with."},
    {"not a valid Win32 application", "the file is damaged, or built for another word size than the host",
     "Copy it anew; if that does not help, replace it by a build for the host's machine."},
    {"不是有效的 Win32", "the file is damaged, or built for another word size than the host",
     "Copy it anew; if that does not help, replace it by a build for the host's machine."},
    {"Bad EXE format", "the file is damaged, or built for another word size than the host",
     "Copy it anew; if that does not help, replace it by a build for the host's machine."},
    {"specified module could not be found", "the file is not there, or a library that it needs is not",
     "Put it beside the program. If it is there, check the set with plugincheck, which names the library it "
     "needs."},
    {"找不到指定的模块", "the file is not there, or a library that it needs is not",
     "Put it beside the program. If it is there, check the set with plugincheck, which names the library it "
     "needs."},
    {"找不到模块", "the file is not there, or a library that it needs is not",
     "Put it beside the program. If it is there, check the set with plugincheck, which names the library it "
     "needs."},
    {"odule not found", "the file is not there, or a library that it needs is not",
     "Put it beside the program. If it is there, check the set with plugincheck, which names the library it "
     "needs."},
    {"initialization routine failed", "the plug-in refused to start: its own start-up code failed",
     "Run plugincheck --probe on the set; its output shows what the plug-in says."},
};

QString fileName(const QString &path)
{
    return path.mid(qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1);
}

/// "Cannot load library X: (Y: cannot open shared object file: ...)": X is not there when Y is X by one of
/// the names that Qt tries, "libX.so" and the like. Otherwise X is there and needs Y.
bool namesItself(const QString &library, const QString &reason)
{
    const int open =
        reason.lastIndexOf(QLatin1Char('('), reason.indexOf(QLatin1String(": cannot open shared")));
    const QString named = fileName(reason.mid(open + 1).section(QLatin1String(": cannot open shared"), 0, 0));
    return named.contains(fileName(library));
}

}

LogAdvice PluginCheck::adviceForReason(const QString &library, const QString &reason)
{
    if (reason.contains(QLatin1String("cannot open shared object file"))) {
        if (!reason.contains(QLatin1String("No such file")))
            return {QStringLiteral("the file cannot be opened"),
                    QStringLiteral("Look at its permissions and at those of its folders.")};
        if (namesItself(library, reason))
            return {QStringLiteral("the library is not where the loader looks"),
                    QStringLiteral("Name its folder in LD_LIBRARY_PATH or in the host's rpath.")};
        return {QString::fromLatin1(needsAnother), QString::fromLatin1(needsAnotherNext)};
    }
    for (const Reason &each : reasons) {
        if (reason.contains(QString::fromUtf8(each.part)))
            return {QString::fromUtf8(each.meaning), QString::fromUtf8(each.next)};
    }
    return {QStringLiteral("the loader refused the library"),
            QStringLiteral("Check the set with plugincheck --probe, which loads each library by itself.")};
}
