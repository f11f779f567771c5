#include "PartTable.h"
#include "messages.h"

#include <QtWidgets/QDockWidget>

/// A dock with the part numbers, or those of them that contain the filter.
class PartList : public QDockWidget
{
    Q_OBJECT

public:
    explicit PartList(QWidget *parent);

    void useFolder(const QString &folder);
    void selectPart(const QString &number) { m_parts->selectPart(number); }
    void setFilter(const QString &filter);
    void renameJob(const QString &oldName, const QString &newName) { m_parts->renameJob(oldName, newName); }

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters);
    void tellCount();

    PartTable *const m_parts = new PartTable;
};

PartList::PartList(QWidget *parent)
    : QDockWidget(tr("Part numbers"), parent)
{
    setObjectName(QLatin1String("ListBar_PNList"));
    setFeatures(DockWidgetMovable);
    setWidget(m_parts);
    connect(m_parts, &PartTable::partSelected, this, [this](const Part &part) {
        tell("CAM_PNData_View.dll", MessageType::SelectPart, {{"Part", part.number}, {"File", part.file}});
    });
}

void PartList::useFolder(const QString &folder)
{
    m_parts->useFolder(folder);
    tellCount();
}

void PartList::setFilter(const QString &filter)
{
    m_parts->setFilter(filter);
    tellCount();
}

void PartList::tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters)
{
    emit sendMsgToManager(makeMessage("ListBar_PNList.dll", receiver, type, parameters));
}

void PartList::tellCount()
{
    tell("CAM_FilterAndInfo_Bar.dll", MessageType::PartsListed,
         {{"Count", m_parts->shownCount()}, {"Total", m_parts->topLevelItemCount()}});
}

/// The dock belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QDockWidget *>(new PartList(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const list = static_cast<PartList *>(static_cast<QDockWidget *>(element));
    if (message.type == MessageType::ShowText)
        list->setWindowTitle(textParameter(message, "Text"));
    else if (message.type == MessageType::UseFolder)
        list->useFolder(textParameter(message, "Folder"));
    else if (message.type == MessageType::SelectPart)
        list->selectPart(textParameter(message, "Part"));
    else if (message.type == MessageType::FilterParts)
        list->setFilter(textParameter(message, "Filter"));
    else if (message.type == MessageType::JobRenamed)
        list->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
}

#include "PartList.moc"
