#include "benchsupport.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>
#include <glog/logging.h>

namespace {

QTemporaryDir &temporaryDirectory()
{
    static QTemporaryDir directory;
    return directory;
}

}

void Bench::start(int &argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging(argv[0]);
    const QString log = temporaryDirectory().filePath(QStringLiteral("log"));
    google::SetLogDestination(google::GLOG_INFO, QFile::encodeName(log).constData());
}

QString Bench::directory()
{
    return temporaryDirectory().path();
}

void Bench::writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray Bench::config(const QStringList &names)
{
    QByteArray entries;
    for (const QString &name : names) {
        if (!entries.isEmpty())
            entries += ",\n";
        entries += R"(    {"name": ")" + name.toUtf8() + R"(", "version": "1.0"})";
    }
    return "{\"pluginList\": [\n" + entries + "\n]}\n";
}

PluginMetaData Bench::message(const QString &dst, qint32 type)
{
    PluginMetaData message;
    message.src = QStringLiteral("Graphic_JobList.dll");
    message.dst = dst;
    message.type = type;
    message.data[QStringLiteral("DstType")] = QStringLiteral("Graphic");
    message.data[QStringLiteral("JobName")] = QStringLiteral("job-20");
    message.data[QStringLiteral("Step")] = QStringLiteral("pcb");
    return message;
}

int Bench::run(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
