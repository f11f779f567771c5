#include "gbktexts.h"
#include "openbase.h"
#include "testmain.h"

#include <QtCore/QProcess>

#include <glog/logging.h>

/// What a console gets when the host lets glog write to it.
class tst_LogToStderr : public QObject
{
    Q_OBJECT

private slots:
    void bytesArriveAsTheyAre();
};

namespace {

constexpr char asHost[] = "--as-host";

int runAsHost(int argc, char **argv)
{
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    const QApplication application(argc, argv);
    QTPluginsMangerPrivate tables;
    OpenBase().loadLibraryPlugin(tables, "notes.txt");
    return 0;
}

}

void tst_LogToStderr::bytesArriveAsTheyAre()
{
    QProcess host;
    host.start(QCoreApplication::applicationFilePath(), {asHost, "-platform", "offscreen"});
    QVERIFY(host.waitForFinished());
    QCOMPARE(host.exitCode(), 0);

    const QByteArray written = host.readAllStandardError().trimmed();
    QVERIFY2(written.endsWith(QByteArray("] ") + Gbk::notALibrary + "notes.txt"), written.constData());
}

int main(int argc, char **argv)
{
    return argc > 1 && qstrcmp(argv[1], asHost) == 0 ? runAsHost(argc, argv)
                                                     : runTest<tst_LogToStderr>(argc, argv);
}

#include "tst_logtostderr.moc"
