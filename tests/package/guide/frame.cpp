//! [frame]
#include <pluginMangerSdk.h>

#include <QVBoxLayout>
#include <QWidget>

static QWidget *makeFrame(QWidget *parent, const QString &job, const QString &step)
{
    auto *const frame = new QWidget(parent);
    frame->setWindowTitle(job + ", " + step);
    new QVBoxLayout(frame);
    return frame;
}

static void receive(QWidget *frame, PluginMetaData message)
{
    constexpr int closed = 20002402;
    if (message.type == closed)
        frame->deleteLater();
}

PLUGINMANGER_FACTORY(GraphicFramework, makeFrame)
PLUGINMANGER_ENTRY_POINT(GraphicFramework, receive)
//! [frame]
