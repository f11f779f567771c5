#include "LogAdvice.h"

using namespace PluginCheck;

namespace {

struct Reason
{
    /// What stands in the loader's reason.
    const char *part;
    /// The same as a system in Chinese says it; null where none does.
    const char *inChinese;
    const char *meaning;
    const char *next;
};

constexpr char needsAnother[] = "a library that the plug-in needs is not found: the one named in the reason";
constexpr char needsAnotherNext[] = "Put that library where the plug-in is, or install the package that has "
                                    "it. \"ldd\" lists all that is missing.";
constexpr char wantsFunction[] =
    "the plug-in wants a function that no library has, or another version of one";
constexpr char wantsFunctionNext[] =
    "Ship the plug-in together with the libraries it was built with; rebuild it with "
    "pluginmanger_add_plugin, which refuses this when linking.";
constexpr char linkShared[] = "Link it as a shared library.";
constexpr char noLibrary[] = "the file is not a library";
constexpr char damaged[] = "the file is cut off or damaged";
constexpr char copyAnew[] = "Copy it anew, and compare its size with the original.";
constexpr char otherWindowsBuild[] = "the file is damaged, or built for another word size than the host";
constexpr char otherWindowsBuildNext[] =
    "Copy it anew; if that does not help, replace it by a build for the host's machine.";
constexpr char noModule[] = "the file is not there, or a library that it needs is not";
constexpr char noModuleNext[] =
    "Put it beside the program. If it is there, check the set with plugincheck, which names the library it "
    "needs.";
constexpr char plainLibrary[] = "a plain library is listed in the desktop set";
constexpr char plainLibraryNext[] = "List it in a CAM or DFM set, or build it with QT_PLUGIN.";
constexpr char notReadable[] = "the host's user may not read the file";
constexpr char notReadableNext[] = "Give read permission for the file and its folders.";

/// The first that fits counts. The Chinese of Linux is that of glibc, which leaves some texts in English.
constexpr Reason reasons[] = {
    {"undefined symbol", nullptr, wantsFunction, wantsFunctionNext},
    {"with link time reference", nullptr, wantsFunction, wantsFunctionNext},
    {"not found (required by", nullptr, "a library that the plug-in needs is of an older version",
     "Ship the plug-in together with the libraries it was built with, or build it with those of the host."},
    {"wrong ELF class", "错误的 ELF 类", "the plug-in was built for another word size than the host",
     "Replace it by a build for the host's machine."},
    {"file too short", "文件过短", "the file is cut off or empty", copyAnew},
    {"invalid ELF header", "无效的 ELF 头", noLibrary, "Copy the library anew."},
    {"not an ELF object", nullptr, noLibrary, "Copy the library anew."},
    {"wrong cpu architecture", nullptr, "the plug-in was built for another machine than the host",
     "Replace it by a build for the host's machine."},
    {"cannot dynamically load", "无法动态载入", "the file is a program, not a library", linkShared},
    {"only ET_DYN and ET_EXEC can be loaded", "只有 ET_DYN 以及 ET_EXEC 可以加载", noLibrary, linkShared},
    {"cannot be dlopen()ed", "无法用 dlopen() 打开共享库",
     "the library was linked to be loaded with a program alone", "Link it without -z nodlopen."},
    {"cannot enable executable stack", "无法启用共享目标需要的执行栈",
     "the plug-in asks for a stack with code on it, which the system does not allow",
     "Link it with -z noexecstack."},
    {"failed to map segment", "无法从共享目标中映射段",
     "the file could not be mapped: memory is short, or its file system allows no code",
     "Look for the option noexec of its file system, and at the memory that is left."},
    {"invalid ELF object", nullptr, damaged, copyAnew},
    {"nonzero padding in e_ident", "在 e_ident 中填补非零值", damaged, copyAnew},
    {"object file has no ", "目标文件没有", damaged, copyAnew},
    {"ELF load command", nullptr, damaged, copyAnew},
    {"ELF file", "ELF 文件", damaged, copyAnew},
    {"not a regular file", nullptr, "the file is no file, but a FIFO or a terminal",
     "Take it away, and copy the library anew."},
    {"cannot read file data", "无法读入文件数据", "the file cannot be read: a directory, or a damaged disk",
     "Look at the file itself."},
    {"incompatible Qt library", nullptr,
     "the plug-in was built with a newer Qt, or with debug against release libraries",
     "Rebuild it with the host's Qt."},
    {"not a valid Qt plugin", nullptr, plainLibrary, plainLibraryNext},
    {"not a Qt plugin", nullptr, plainLibrary, plainLibraryNext},
    {"plugin meta data", nullptr, plainLibrary, plainLibraryNext},
    {"plugin verification data mismatch", nullptr, plainLibrary, plainLibraryNext},
    {"shared library was not found", nullptr, "the Qt plug-in is in none of the folders where Qt looks",
     "Put it beside the host's other plug-ins, or add its folder with QCoreApplication::addLibraryPath()."},
    {"ermission denied", "权限不够", notReadable, notReadableNext},
    {"ccess is denied", "拒绝访问", notReadable, notReadableNext},
    {"static TLS block", "无法在静态 TLS 块中分配内存",
     "too many libraries with thread-local variables are loaded",
     "Load this library earlier, or build it with -ftls-model=global-dynamic."},
    {"specified procedure could not be found", "找不到指定的程序",
     "the plug-in wants a function that a library of another version has",
     "Ship the plug-in together with the libraries it was built with."},
    {"not a valid Win32 application", "不是有效的 Win32", otherWindowsBuild, otherWindowsBuildNext},
    {"Bad EXE format", nullptr, otherWindowsBuild, otherWindowsBuildNext},
    {"specified module could not be found", "找不到指定的模块", noModule, noModuleNext},
    {"odule not found", "找不到模块", noModule, noModuleNext},
    {"initialization routine failed", nullptr, "the plug-in refused to start: its own start-up code failed",
     "Run plugincheck --probe on the set; its output shows what the plug-in says."},
};

QString fileName(const QString &path)
{
    return path.mid(qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1);
}

/// Whether Qt looks for a library under this name.
bool isNameOf(const QString &library, const QString &name)
{
    for (const char *const prefix : {"", "lib"}) {
        for (const char *const suffix : {"", ".so"}) {
            if (name == QLatin1String(prefix) + library + QLatin1String(suffix))
                return true;
        }
    }
    return false;
}

/// Returns the file that the loader could not open: "Cannot load library X: (Y: cannot open shared object
/// file: ...)" is of Y. Null where that is not the reason.
QString fileNotOpened(const QString &reason)
{
    for (const char *const text : {": cannot open shared object file", ": 无法打开共享对象文件"}) {
        const int end = int(reason.indexOf(QString::fromUtf8(text)));
        if (end >= 0)
            return reason.left(end).mid(reason.lastIndexOf(QLatin1Char('('), end) + 1);
    }
    return {};
}

bool isNoSuchFile(const QString &reason)
{
    return reason.contains(QLatin1String("No such file"))
           || reason.contains(QStringLiteral("没有那个文件或目录"));
}

bool isNameTooLong(const QString &reason)
{
    return reason.contains(QLatin1String("File name too long"))
           || reason.contains(QStringLiteral("文件名过长"));
}

bool fits(const Reason &each, const QString &reason)
{
    return reason.contains(QLatin1String(each.part))
           || (each.inChinese && reason.contains(QString::fromUtf8(each.inChinese)));
}

}

LogAdvice PluginCheck::adviceForReason(const QString &library, const QString &reason)
{
    const QString notOpened = fileNotOpened(reason);
    if (!notOpened.isNull()) {
        if (isNameTooLong(reason))
            return {QStringLiteral("the name is longer than that of any file"),
                    QStringLiteral("Shorten it in the list.")};
        if (!isNoSuchFile(reason))
            return {QStringLiteral("the file cannot be opened"),
                    QStringLiteral("Look at its permissions and at those of its folders.")};
        // Otherwise the library is there, and needs the other one.
        if (isNameOf(fileName(library), fileName(notOpened)))
            return {QStringLiteral("the library is not where the loader looks"),
                    QStringLiteral("Name its folder in LD_LIBRARY_PATH or in the host's rpath.")};
        return {QString::fromLatin1(needsAnother), QString::fromLatin1(needsAnotherNext)};
    }
    for (const Reason &each : reasons) {
        if (fits(each, reason))
            return {QString::fromUtf8(each.meaning), QString::fromUtf8(each.next)};
    }
    return {QStringLiteral("the loader refused the library"),
            QStringLiteral("Check the set with plugincheck --probe, which loads each library by itself.")};
}
