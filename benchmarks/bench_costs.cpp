// What operations cost beside time: instructions, allocations and memory. Repeatable, unlike time, so the
// figures are kept and compared.
//
//   bench_costs               prints the allocations of each operation, and the bytes of what is kept
//   valgrind --tool=callgrind bench_costs    writes the instructions of each operation to a file of its own

#include "benchsupport.h"
#include "workbench.h"

#include "PluginInterface.h"
#include "pluginManger.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QLibrary>

#include <malloc.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <functional>
#include <vector>

extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *__libc_calloc(std::size_t count, std::size_t size);
extern "C" void *__libc_realloc(void *memory, std::size_t size);

namespace {
long allocations = 0;
}

// The C library looks for these in the program first, so every allocation of every library is counted.
extern "C" void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

extern "C" void *calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}

extern "C" void *realloc(void *memory, std::size_t size)
{
    ++allocations;
    return __libc_realloc(memory, size);
}

class Sender : public QObject
{
    Q_OBJECT

signals:
    void sendMsgToManager(PluginMetaData msg);
};

class OpenBase : public QTpluginsMangerBase
{
public:
    using QTpluginsMangerBase::loadLibraryPlugin;
    using QTpluginsMangerBase::readPluginConfig;
};

namespace {

constexpr int runs = 100;

/// So often is an operation run before it is counted: what it does for the first time only is not its cost.
constexpr int warmUpRuns = 3;

struct Operation
{
    const char *name;
    std::function<void()> run;
};

void count(const Operation &operation)
{
    for (int run = 0; run < warmUpRuns; ++run)
        operation.run();
    const long before = allocations;
    CALLGRIND_ZERO_STATS;
    for (int run = 0; run < runs; ++run)
        operation.run();
    CALLGRIND_DUMP_STATS_AT(operation.name);
    const long counted = allocations - before;
    std::printf("allocations,%s,%g\n", operation.name, double(counted) / runs);
}

long heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return long(info.uordblks + info.hblkhd);
}

/// Prints by how many bytes the heap has grown for each of `number` things that `make` makes.
void weigh(const char *name, int number, const std::function<void()> &make)
{
    const long before = heapBytes();
    make();
    std::printf("bytes,%s,%.0f\n", name, double(heapBytes() - before) / number);
}

PluginMetaData messageOf(const QString &dst, const char *dstType, qint32 type = 7)
{
    PluginMetaData message = Bench::message(dst, type);
    message.data[QStringLiteral("DstType")] = QString::fromLatin1(dstType);
    return message;
}

QTPluginsMangerPrivate describeChain(int length)
{
    QTPluginsMangerPrivate tables;
    for (int number = 0; number < length; ++number) {
        const QString name = QString::number(number);
        const QVariantMap next{{QStringLiteral("name"), QString::number(number + 1)},
                               {QStringLiteral("version"), QStringLiteral("1")}};
        tables.m_names[name] = name;
        tables.m_versions[name] = QStringLiteral("1");
        tables.m_dependencies[name] = number + 1 < length ? QVariantList{next} : QVariantList();
    }
    return tables;
}

void countOperations(Bench::Workbench &workbench, Sender &sender)
{
    QTpluginsManger4CAM &manager = *workbench.manager;
    const QString editor = QStringLiteral("ORVIK-GraphicEditor.dll");
    const QString view = QStringLiteral("Graphic_View.dll");
    const PluginMetaData toFrame = Bench::message(editor);
    const PluginMetaData traced = Bench::message(view);
    const PluginMetaData quiet = Bench::message(view, 10000000);
    const PluginMetaData toGraphic = messageOf(view, "Graphic");
    const PluginMetaData toRoot = messageOf(view, "EngineerRoot");
    const PluginMetaData toMatrix = messageOf(view, "Matrix");
    const PluginMetaData toGuide = messageOf(view, "Guide");
    const PluginMetaData toDesktop = Bench::message(QStringLiteral("File_Process"));
    const QString job = QStringLiteral("job-20");
    const QString list = Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig4CAM.json");
    const QTPluginsMangerPrivate chain = describeChain(1000);
    OpenBase base;

    const Operation operations[] = {
        {"copy of a record",
         [&] {
             const PluginMetaData copy = toFrame;
             Q_UNUSED(copy)
         }},
        {"transmitDataToFramework", [&] { manager.transmitDataToFramework(workbench.frame, toFrame); }},
        {"sendKeyBoardStatusToGraphic",
         [&] { manager.sendKeyBoardStatusToGraphic(workbench.frame, toFrame); }},
        {"recMegToPlugin quiet", [&] { manager.recMegToPlugin(workbench.frame, quiet); }},
        {"recMegToPlugin traced", [&] { manager.recMegToPlugin(workbench.frame, traced); }},
        {"pluginTransmitData Graphic", [&] { manager.pluginTransmitData(toGraphic); }},
        {"pluginTransmitData EngineerRoot", [&] { manager.pluginTransmitData(toRoot); }},
        {"pluginTransmitData Matrix", [&] { manager.pluginTransmitData(toMatrix); }},
        {"pluginTransmitData Guide", [&] { manager.pluginTransmitData(toGuide); }},
        {"updateGraphic", [&] { manager.updateGraphic(job, traced); }},
        {"updateMatrix", [&] { manager.updateMatrix(job, traced); }},
        {"look-up of an element", [&] { manager.Ov_RegisterGraphic_View(workbench.frame); }},
        {"recMegfromPlugin direct", [&] { emit sender.sendMsgToManager(toDesktop); }},
        {"readPluginConfig 4 entries",
         [&] {
             QTPluginsMangerPrivate tables;
             base.readPluginConfig(tables, list);
         }},
        {"check chain of 1000", [&] { chain.check(QStringLiteral("0")); }},
    };
    for (const Operation &operation : operations)
        count(operation);
}

void weighWhatIsKept(Bench::Workbench &workbench, const QDir &libraries)
{
    constexpr int records = 100000;
    weigh("record of the registry (name of 35 bytes)", records, [&] {
        for (int number = 0; number < records; ++number)
            workbench.manager->insertRoot("An-element-of-the-workbench-" + std::to_string(1000000 + number),
                                          &workbench);
    });

    constexpr int messages = 10000;
    Sender sender;
    QObject::connect(&sender, SIGNAL(sendMsgToManager(PluginMetaData)), QTpluginsManger::instance(),
                     SLOT(recMegfromPlugin(PluginMetaData)), Qt::QueuedConnection);
    const PluginMetaData message = Bench::message(QStringLiteral("File_Process"));
    weigh("queued message (parameters shared with the sender's)", messages, [&] {
        for (int number = 0; number < messages; ++number)
            emit sender.sendMsgToManager(message);
    });
    QCoreApplication::sendPostedEvents(QTpluginsManger::instance());

    // Two halves of one set of copies: a library that is already there costs nothing.
    const QStringList files = libraries.entryList({QStringLiteral("*.dll")}, QDir::Files);
    const int half = files.size() / 2;
    weigh("loaded library (by QLibrary)", half, [&] {
        for (int number = 0; number < half; ++number)
            (new QLibrary(libraries.filePath(files.at(number))))->load();
    });
    OpenBase base;
    auto *const tables = new QTPluginsMangerPrivate;
    weigh("loaded library (by the manager)", half, [&] {
        for (int number = half; number < 2 * half; ++number)
            base.loadLibraryPlugin(*tables, libraries.filePath(files.at(number)));
    });
    if (half == 0 || tables->m_libraries.size() != half)
        qFatal("the libraries are not loaded");
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    QDir(Bench::directory()).mkpath(QStringLiteral("pluginconfig"));
    Bench::writeFile(Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig.json"),
                     Bench::config({QStringLiteral("File_Process")}));
    QDir::setCurrent(Bench::directory());
    QCoreApplication::addLibraryPath(QStringLiteral(BENCH_PLUGIN_DIR));
    QTpluginsManger::instance()->loadAllPlugins();
    QTpluginsManger::instance()->initSignalAndSlot();

    Bench::Workbench workbench;
    workbench.fill(40);
    Sender sender;
    QObject::connect(&sender, SIGNAL(sendMsgToManager(PluginMetaData)), QTpluginsManger::instance(),
                     SLOT(recMegfromPlugin(PluginMetaData)), Qt::DirectConnection);
    countOperations(workbench, sender);
    if (argc == 2)
        weighWhatIsKept(workbench, QDir(QString::fromLocal8Bit(argv[1])));
    return 0;
}

#include "bench_costs.moc"
