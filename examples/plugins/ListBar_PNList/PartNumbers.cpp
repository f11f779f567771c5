#include "DesktopPlugin.h"
#include "PartTable.h"

#include <PNListInterface.h>

#include <QtCore/QPointer>

/**
 * The list of part numbers of the desktop tools. Whoever works on a part is told which one is selected.
 *
 * One library serves both managers, since a process can have only one of each file name.
 */
class PartNumbers : public DesktopPlugin, public PNListInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(PNListInterface)

public:
    PartNumbers();

    QWidget *createList() override;
    void recMsgFromManager(PluginMetaData message) override;

private:
    void tellPart(const Part &part);

    /// The host owns it, and may delete it before the last message comes.
    QPointer<PartTable> m_parts;
};

PartNumbers::PartNumbers()
    : DesktopPlugin("ListBar_PNList")
{
}

QWidget *PartNumbers::createList()
{
    m_parts = new PartTable;
    connect(m_parts, &PartTable::partSelected, this, &PartNumbers::tellPart);
    return m_parts;
}

void PartNumbers::recMsgFromManager(PluginMetaData message)
{
    if (m_parts && message.type == MessageType::UseFolder)
        m_parts->useFolder(textParameter(message, "Folder"));
}

void PartNumbers::tellPart(const Part &part)
{
    for (const char *const receiver : {"Viewbar_View", "Viewbar_Status", "File_Process", "Plating_Area"})
        send(receiver, MessageType::SelectPart, {{"Part", part.number}, {"File", part.file}});
}

#include "PartNumbers.moc"
