#include "Mailbox.h"

#include <pluginManger4CAM.h>

#include <QtWidgets/QWidget>

void Mailbox::giveTo(QObject *sender, QWidget *frame, QTpluginsManger4CAM *manager)
{
    // By name, since a host sees no more of an element than its Qt type.
    if (sender->metaObject()->indexOfSignal("sendMsgToManager(PluginMetaData)") < 0)
        return;
    auto *const mailbox = new Mailbox(sender, frame, manager);
    connect(sender, SIGNAL(sendMsgToManager(PluginMetaData)), mailbox, SLOT(forward(PluginMetaData)));
}

/// A message says itself when it is for another frame; others stay in the sender's, or are for it.
void Mailbox::forward(const PluginMetaData &message)
{
    if (message.data.contains(QStringLiteral("DstType")))
        m_manager->pluginTransmitData(message);
    else if (message.dst == QLatin1String("ORVIK-GraphicEditor.dll"))
        m_manager->transmitDataToFramework(m_frame, message);
    else
        m_manager->recMegToPlugin(m_frame, message);
}

Mailbox::Mailbox(QObject *sender, QWidget *frame, QTpluginsManger4CAM *manager)
    : QObject(sender)
    , m_frame(frame)
    , m_manager(manager)
{
}
