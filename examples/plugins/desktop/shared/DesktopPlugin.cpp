#include "DesktopPlugin.h"

#include "entryActions.h"

DesktopPlugin::DesktopPlugin(const char *name)
    : m_name(QLatin1String(name))
{
}

void DesktopPlugin::recMsgFromManager(PluginMetaData) {}

void DesktopPlugin::send(const QString &receiver, qint32 type, const QMap<QString, QVariant> &data)
{
    emit sendMsgToManager(makeMessage(m_name, receiver, type, data));
}

QList<QAction *> DesktopPlugin::makeCommands(std::initializer_list<Entry> entries, const QString &receiver)
{
    const QList<QAction *> actions = makeEntryActions(entries, this);
    for (const QAction *const action : actions)
        connect(action, &QAction::triggered, this, [=] {
            send(receiver, MessageType::RunCommand, {{"Command", action->objectName()}});
        });
    return actions;
}
