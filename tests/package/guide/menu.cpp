//! [menu]
#include <pluginMangerSdk.h>

#include <QMenu>

static QMenu *makeMenu(QWidget *parent)
{
    auto *const menu = new QMenu("File", parent);
    menu->addAction("Say hello");
    return menu;
}

PLUGINMANGER_FACTORY(CAMMenuFile, makeMenu)
//! [menu]
