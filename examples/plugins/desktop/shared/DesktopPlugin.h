#pragma once

#include "entries.h"
#include "messages.h"

#include <PluginInterface.h>

#include <QtCore/QList>

#include <initializer_list>

class QAction;

/**
 * What the root objects of the desktop plug-ins have in common: they send and receive messages, and make
 * actions that send commands.
 *
 * Desktop plug-ins name each other as the manager does, without ".dll".
 */
class DesktopPlugin : public QObject, public PluginInterface
{
    Q_OBJECT
    Q_INTERFACES(PluginInterface)

public:
    /// Most tools have nothing to receive.
    void recMsgFromManager(PluginMetaData message) override;

signals:
    void sendMsgToManager(PluginMetaData message);

protected:
    explicit DesktopPlugin(const char *name);

    /// May be called from any thread; the message arrives on that of the user interface.
    void send(const QString &receiver, qint32 type, const QMap<QString, QVariant> &data);

    /// Actions that this object owns. Each sends its command to the plug-in `receiver`: "Zoom in" sends
    /// "zoomIn".
    QList<QAction *> makeCommands(std::initializer_list<Entry> entries, const QString &receiver);

private:
    const QString m_name;
};
