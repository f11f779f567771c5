#include "PartTable.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QHeaderView>

PartTable::PartTable()
{
    setRootIsDecorated(false);
    setHeaderLabels({tr("Part"), tr("Rev"), tr("Job")});
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem *item) {
        for (const Part &part : qAsConst(m_parts)) {
            if (item && part.number == item->text(0))
                emit partSelected(part);
        }
    });
}

void PartTable::useFolder(const QString &folder)
{
    const QSignalBlocker blocker(this);
    clear();
    m_parts = readParts(folder);
    for (const Part &part : qAsConst(m_parts)) {
        auto *const item = new QTreeWidgetItem(this, {part.number, part.revision, part.jobName});
        item->setToolTip(0, tr("%1, %2 mm, %3").arg(part.customer).arg(part.thickness).arg(part.finish));
    }
}

void PartTable::selectPart(const QString &number)
{
    const QList<QTreeWidgetItem *> parts = findItems(number, Qt::MatchExactly);
    if (!parts.isEmpty())
        setCurrentItem(parts.first());
}

void PartTable::setFilter(const QString &filter)
{
    for (int row = 0; row < topLevelItemCount(); ++row) {
        QTreeWidgetItem *const item = topLevelItem(row);
        const bool matches = item->text(0).contains(filter, Qt::CaseInsensitive)
                             || item->text(2).contains(filter, Qt::CaseInsensitive);
        item->setHidden(!matches);
    }
}

void PartTable::renameJob(const QString &oldName, const QString &newName)
{
    const QList<QTreeWidgetItem *> parts = findItems(oldName, Qt::MatchExactly, 2);
    for (QTreeWidgetItem *const part : parts)
        part->setText(2, newName);
}

int PartTable::shownCount() const
{
    int count = 0;
    for (int row = 0; row < topLevelItemCount(); ++row)
        count += topLevelItem(row)->isHidden() ? 0 : 1;
    return count;
}
