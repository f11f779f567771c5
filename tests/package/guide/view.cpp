//! [view]
#include <pluginMangerSdk.h>

#include <QLabel>

static QWidget *makeView(QWidget *parent)
{
    return new QLabel("Nothing yet", parent);
}

static void receive(QWidget *view, PluginMetaData message)
{
    static_cast<QLabel *>(view)->setText(message.data.value("Text").toString());
}

PLUGINMANGER_FACTORY(Graphic_View, makeView)
PLUGINMANGER_ENTRY_POINT(Graphic_View, receive)
PLUGINMANGER_ABI_STAMP
//! [view]
