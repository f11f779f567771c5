#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QTreeWidget>

namespace {

/// A dock with a tree of jobs and their steps. The first job is open.
class JobList : public QDockWidget
{
public:
    explicit JobList(QWidget *parent);

    void selectStep(const QString &name);

private:
    QTreeWidget *const m_tree = new QTreeWidget(this);
};

JobList::JobList(QWidget *parent)
    : QDockWidget(QStringLiteral("Jobs and steps"), parent)
{
    setObjectName(QStringLiteral("Graphic_JobList"));
    setWidget(m_tree);
    m_tree->setHeaderHidden(true);
    for (const Part &part : sampleParts()) {
        auto *const job = new QTreeWidgetItem(m_tree, {part.jobName});
        for (const QString &step : part.steps)
            new QTreeWidgetItem(job, {step});
    }
    m_tree->topLevelItem(0)->setExpanded(true);
    selectStep(QStringLiteral("pcb"));
}

void JobList::selectStep(const QString &name)
{
    const QList<QTreeWidgetItem *> steps = m_tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
    if (!steps.isEmpty())
        m_tree->setCurrentItem(steps.first());
}

}

/// The dock belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QDockWidget *>(new JobList(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const list = static_cast<JobList *>(static_cast<QDockWidget *>(element));
    if (message.type == MessageType::ShowText)
        list->setWindowTitle(parameter(message, "Text").toString());
    else if (message.type == MessageType::SelectStep)
        list->selectStep(parameter(message, "Step").toString());
}
