#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QTreeWidget>

/// A dock with the job, its open steps, and the layers of the step that this list stands beside.
class JobList : public QDockWidget
{
    Q_OBJECT

public:
    explicit JobList(QWidget *parent);

    void openStep(const QString &jobName, const QString &stepName);
    void showSteps(const QStringList &steps);
    void renameJob(const QString &oldName, const QString &newName);
    void renameStep(const QString &newName);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void rebuild();
    void itemClicked(const QTreeWidgetItem &item);

    QTreeWidget *const m_tree = new QTreeWidget(this);
    QString m_jobName;
    QString m_stepName;
    QStringList m_steps;
    QVector<Layer> m_layers;
};

JobList::JobList(QWidget *parent)
    : QDockWidget(QStringLiteral("Job"), parent)
{
    setObjectName(QStringLiteral("Graphic_JobList"));
    setWidget(m_tree);
    m_tree->setHeaderHidden(true);
    m_tree->setIndentation(14);
    m_tree->setMinimumWidth(150);
    connect(m_tree, &QTreeWidget::itemClicked, this,
            [this](const QTreeWidgetItem *item) { itemClicked(*item); });
}

void JobList::openStep(const QString &jobName, const QString &stepName)
{
    m_jobName = jobName;
    m_stepName = stepName;
    m_steps = QStringList{stepName};
    m_layers = readJob(jobName).layers;
    rebuild();
}

void JobList::showSteps(const QStringList &steps)
{
    m_steps = steps;
    rebuild();
}

void JobList::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
    rebuild();
}

void JobList::renameStep(const QString &newName)
{
    m_stepName = newName;
    rebuild();
}

void JobList::rebuild()
{
    m_tree->clear();
    auto *const job = new QTreeWidgetItem(m_tree, {m_jobName});
    for (const QString &name : qAsConst(m_steps)) {
        auto *const step = new QTreeWidgetItem(job, {name});
        if (name != m_stepName)
            continue;
        for (const Layer &layer : qAsConst(m_layers))
            new QTreeWidgetItem(step, {layer.name});
        m_tree->setCurrentItem(step);
    }
    m_tree->expandAll();
}

/// A layer goes to the view beside this list. For another step the frame is asked, which asks the host.
void JobList::itemClicked(const QTreeWidgetItem &item)
{
    constexpr char ownName[] = "Graphic_JobList.dll";
    const QTreeWidgetItem *const above = item.parent();
    if (above && above->parent())
        emit sendMsgToManager(
            makeMessage(ownName, "Graphic_View.dll", MessageType::SelectLayer, {{"Layer", item.text(0)}}));
    else if (above && item.text(0) != m_stepName)
        emit sendMsgToManager(makeMessage(ownName, "ORVIK-GraphicEditor.dll", MessageType::SelectStep,
                                          {{"JobName", m_jobName}, {"Step", item.text(0)}}));
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
        list->setWindowTitle(textParameter(message, "Text"));
    else if (message.type == MessageType::OpenStep)
        list->openStep(textParameter(message, "JobName"), textParameter(message, "Step"));
    else if (message.type == MessageType::ShowSteps)
        list->showSteps(parameter(message, "Steps").toStringList());
    else if (message.type == MessageType::JobRenamed)
        list->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
    else if (message.type == MessageType::RenameStep)
        list->renameStep(textParameter(message, "ChangeStepName"));
}

#include "JobList.moc"
