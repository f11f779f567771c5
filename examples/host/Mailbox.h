#pragma once

#include <PluginMetaData.h>

#include <QtCore/QObject>

class Post;

/**
 * Takes what an element or a frame sends, and hands it to the manager.
 *
 * Plug-ins do not know the manager. Those that send messages have a signal
 * `sendMsgToManager(PluginMetaData)`, and the host knows where the sender lives.
 */
class Mailbox : public QObject
{
    Q_OBJECT

public:
    /// Gives `sender`, when it has the signal, a mailbox that lives as long as it does.
    static void giveTo(QObject *sender, QWidget *frame, Post &post);

private slots:
    void forward(const PluginMetaData &message);

private:
    Mailbox(QObject *sender, QWidget *frame, Post &post);

    QWidget *const m_frame;
    Post &m_post;
};
