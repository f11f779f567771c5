#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QLabel>

/// The text at the end of the menu bar, which says what is being worked on. It belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    const Part &part = sampleParts().first();
    auto *const info = new QLabel(parent);
    info->setContentsMargins(8, 0, 8, 0);
    info->setText(
        QStringLiteral("%1 %2, %3, job %4").arg(part.number, part.revision, part.customer, part.jobName));
    return static_cast<QWidget *>(info);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const info = static_cast<QLabel *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        info->setText(textParameter(message, "Text"));
    else if (message.type == MessageType::JobRenamed)
        info->setText(
            info->text().replace(textParameter(message, "OldJobName"), textParameter(message, "NewJobName")));
}
