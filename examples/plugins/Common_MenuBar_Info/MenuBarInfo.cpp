#include "messages.h"

#include <QtWidgets/QLabel>

namespace {

/// What is being worked on. Without a part there is nothing to say.
class MenuBarInfo : public QLabel
{
public:
    explicit MenuBarInfo(QWidget *parent);

    void showJob(const QString &job, const QString &part);
    void renameJob(const QString &oldName, const QString &newName);

private:
    QString m_job;
    QString m_part;
};

MenuBarInfo::MenuBarInfo(QWidget *parent)
    : QLabel(parent)
{
    setContentsMargins(8, 0, 8, 0);
}

void MenuBarInfo::showJob(const QString &job, const QString &part)
{
    m_job = job;
    m_part = part;
    setText(part.isEmpty() ? job : QLatin1String("%1, %2").arg(part, job));
}

void MenuBarInfo::renameJob(const QString &oldName, const QString &newName)
{
    if (m_job == oldName)
        showJob(newName, m_part);
}

}

/// The text at the end of the menu bar. It belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new MenuBarInfo(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const info = static_cast<MenuBarInfo *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        info->setText(textParameter(message, "Text"));
    else if (message.type == MessageType::ShowJob)
        info->showJob(textParameter(message, "JobName"), textParameter(message, "Part"));
    else if (message.type == MessageType::JobRenamed)
        info->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
}
