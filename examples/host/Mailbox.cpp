#include "Mailbox.h"

#include "Post.h"

#include <pluginManger4CAM.h>

#include <QtWidgets/QWidget>

void Mailbox::giveTo(QObject *sender, QWidget *frame, Post &post)
{
    // By name, since a host sees no more of an element than its Qt type.
    if (sender->metaObject()->indexOfSignal("sendMsgToManager(PluginMetaData)") < 0)
        return;
    auto *const mailbox = new Mailbox(sender, frame, post);
    connect(sender, SIGNAL(sendMsgToManager(PluginMetaData)), mailbox, SLOT(forward(PluginMetaData)));
}

/// A message says itself when it is for another frame; others stay in the sender's, or are for it.
void Mailbox::forward(const PluginMetaData &message)
{
    QTpluginsManger4CAM *const manager = m_post.manager();
    if (message.data.contains(QStringLiteral("DstType")))
        m_post.toFrameOrElement(message);
    else if (message.dst == QLatin1String("ORVIK-GraphicEditor.dll"))
        m_post.deliver("transmitDataToFramework", message,
                       [&] { manager->transmitDataToFramework(m_frame, message); });
    else
        m_post.toElement(m_frame, message);
}

Mailbox::Mailbox(QObject *sender, QWidget *frame, Post &post)
    : QObject(sender)
    , m_frame(frame)
    , m_post(post)
{
}
