#pragma once

#include "Frame.h"

#include <QtCore/QMap>
#include <QtCore/QVariant>
#include <QtCore/QVector>

/// A message that the CAM manager sends by itself while it carries out an operation.
struct ManagerMessage
{
    QString library;
    qint32 type;
    QMap<QString, QVariant> data;
};

/**
 * What the CAM manager sends by itself, as docs/messages.md has it.
 *
 * The host does not see these on their way: receivers are called by the manager, and do not know the host.
 */
namespace ManagerMessages {
/// To the frame that has been made for it.
QVector<ManagerMessage> whenOpened(const Frame &frame);
/// To each frame that it forgets.
QVector<ManagerMessage> whenClosed(const QList<Frame *> &frames);
/// To the matrix, the job lists and the guide of the job.
QVector<ManagerMessage> whenJobRenamed(const QString &oldName, const QString &newName);
}
