#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeWidget>

/// A dock with the part numbers, or those of them that contain the filter.
class PartList : public QDockWidget
{
    Q_OBJECT

public:
    explicit PartList(QWidget *parent);

    void selectPart(const QString &number);
    void setFilter(const QString &filter);
    void renameJob(const QString &oldName, const QString &newName);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    QTreeWidget *const m_list = new QTreeWidget(this);
};

PartList::PartList(QWidget *parent)
    : QDockWidget(QStringLiteral("Part numbers"), parent)
{
    setObjectName(QStringLiteral("ListBar_PNList"));
    setWidget(m_list);
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels({QStringLiteral("Part"), QStringLiteral("Rev"), QStringLiteral("Job")});
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (const Part &part : sampleParts())
        new QTreeWidgetItem(m_list, {part.number, part.revision, part.jobName});
    selectPart(sampleParts().first().number);
    connect(m_list, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem *item) {
        if (item)
            emit sendMsgToManager(makeMessage("ListBar_PNList.dll", "CAM_PNData_View.dll",
                                              MessageType::SelectPart, {{"Part", item->text(0)}}));
    });
}

void PartList::selectPart(const QString &number)
{
    const QList<QTreeWidgetItem *> parts = m_list->findItems(number, Qt::MatchExactly);
    if (!parts.isEmpty())
        m_list->setCurrentItem(parts.first());
}

void PartList::setFilter(const QString &filter)
{
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *const item = m_list->topLevelItem(row);
        const bool matches = item->text(0).contains(filter, Qt::CaseInsensitive)
                             || item->text(2).contains(filter, Qt::CaseInsensitive);
        item->setHidden(!matches);
    }
}

void PartList::renameJob(const QString &oldName, const QString &newName)
{
    const QList<QTreeWidgetItem *> parts = m_list->findItems(oldName, Qt::MatchExactly, 2);
    for (QTreeWidgetItem *const part : parts)
        part->setText(2, newName);
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
    else if (message.type == MessageType::SelectPart)
        list->selectPart(textParameter(message, "Part"));
    else if (message.type == MessageType::FilterParts)
        list->setFilter(textParameter(message, "Filter"));
    else if (message.type == MessageType::JobRenamed)
        list->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
}

#include "PartList.moc"
