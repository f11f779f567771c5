#pragma once

#include "board.h"

#include <QtWidgets/QTreeWidget>

/// The part numbers of the jobs in a folder. Both faces of this plug-in show one.
class PartTable : public QTreeWidget
{
    Q_OBJECT

public:
    PartTable();

    void useFolder(const QString &folder);
    void selectPart(const QString &number);
    void setFilter(const QString &filter);
    void renameJob(const QString &oldName, const QString &newName);
    int shownCount() const;

signals:
    void partSelected(const Part &part);

private:
    QVector<Part> m_parts;
};
