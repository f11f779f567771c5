#include "board.h"
#include "messages.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QPixmap>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QTreeWidget>

namespace {

enum Row { JobRow = QTreeWidgetItem::UserType, StepRow, LayerRow };

}

/// A dock with the job, its open steps, and the layers of the step that this list stands beside: a tick shows
/// a layer, a click makes it stand out.
class JobList : public QDockWidget
{
    Q_OBJECT

public:
    explicit JobList(QWidget *parent);

    void openStep(const QString &jobName, const QString &stepName, const QString &file);
    void showSteps(const QStringList &steps);
    void showLayers(const QStringList &visible);
    void renameJob(const QString &oldName, const QString &newName);
    void renameStep(const QString &oldName, const QString &newName);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void rebuild();
    void addLayers(QTreeWidgetItem *step);
    void itemClicked(const QTreeWidgetItem &item);
    void itemTicked(const QTreeWidgetItem &item);
    void tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters);

    QTreeWidget *const m_tree = new QTreeWidget(this);
    QString m_jobName;
    QString m_stepName;
    QStringList m_steps;
    QStringList m_visible;
    QVector<Layer> m_layers;
};

JobList::JobList(QWidget *parent)
    : QDockWidget(tr("Job"), parent)
{
    setObjectName(QLatin1String("Graphic_JobList"));
    setFeatures(DockWidgetMovable);
    setWidget(m_tree);
    m_tree->setHeaderHidden(true);
    m_tree->setIndentation(12);
    m_tree->setMinimumHeight(5 * m_tree->fontMetrics().height());
    m_tree->setMinimumWidth(m_tree->fontMetrics().horizontalAdvance(QLatin1String("mask-bottom")) * 9 / 4);
    connect(m_tree, &QTreeWidget::itemClicked, this,
            [this](const QTreeWidgetItem *item) { itemClicked(*item); });
    connect(m_tree, &QTreeWidget::itemChanged, this,
            [this](const QTreeWidgetItem *item) { itemTicked(*item); });
}

void JobList::openStep(const QString &jobName, const QString &stepName, const QString &file)
{
    m_jobName = jobName;
    m_stepName = stepName;
    m_steps = QStringList{stepName};
    m_layers = readJob(file).layers;
    rebuild();
}

void JobList::showSteps(const QStringList &steps)
{
    m_steps = steps;
    rebuild();
}

void JobList::showLayers(const QStringList &visible)
{
    m_visible = visible;
    const QSignalBlocker blocker(m_tree);
    const QList<QTreeWidgetItem *> items =
        m_tree->findItems(QString(), Qt::MatchContains | Qt::MatchRecursive);
    for (QTreeWidgetItem *const item : items) {
        if (item->type() == LayerRow)
            item->setCheckState(0, visible.contains(item->text(0)) ? Qt::Checked : Qt::Unchecked);
    }
}

void JobList::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
    rebuild();
}

void JobList::renameStep(const QString &oldName, const QString &newName)
{
    if (m_stepName == oldName)
        m_stepName = newName;
    rebuild();
}

void JobList::rebuild()
{
    const QSignalBlocker blocker(m_tree);
    m_tree->clear();
    auto *const job = new QTreeWidgetItem(m_tree, {m_jobName}, JobRow);
    for (const QString &name : qAsConst(m_steps)) {
        auto *const step = new QTreeWidgetItem(job, {name}, StepRow);
        if (name != m_stepName)
            continue;
        addLayers(step);
        m_tree->setCurrentItem(step);
    }
    m_tree->expandAll();
}

void JobList::addLayers(QTreeWidgetItem *step)
{
    const int size = m_tree->fontMetrics().height() * 3 / 4;
    for (const Layer &layer : qAsConst(m_layers)) {
        QPixmap swatch(size, size);
        swatch.fill(layer.color);
        auto *const item = new QTreeWidgetItem(step, {layer.name}, LayerRow);
        item->setIcon(0, swatch);
        item->setCheckState(0, m_visible.contains(layer.name) ? Qt::Checked : Qt::Unchecked);
        item->setToolTip(0, tr("%1, features: %2").arg(layerKindText(layer.kind)).arg(layer.featureCount()));
    }
}

/// A layer goes to the view beside this list. For another step the frame is asked, which asks the host.
void JobList::itemClicked(const QTreeWidgetItem &item)
{
    if (item.type() == LayerRow)
        tell("Graphic_View.dll", MessageType::SelectLayer, {{"Layer", item.text(0)}});
    else if (item.type() == StepRow && item.text(0) != m_stepName)
        tell("ORVIK-GraphicEditor.dll", MessageType::SelectStep,
             {{"JobName", m_jobName}, {"Step", item.text(0)}});
}

void JobList::itemTicked(const QTreeWidgetItem &item)
{
    if (item.type() == LayerRow)
        tell("Graphic_View.dll", MessageType::ShowLayer,
             {{"Layer", item.text(0)}, {"Visible", item.checkState(0) == Qt::Checked}});
}

void JobList::tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters)
{
    emit sendMsgToManager(makeMessage("Graphic_JobList.dll", receiver, type, parameters));
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
        list->openStep(textParameter(message, "JobName"), textParameter(message, "Step"),
                       textParameter(message, "File"));
    else if (message.type == MessageType::ShowSteps)
        list->showSteps(parameter(message, "Steps").toStringList());
    else if (message.type == MessageType::LayersShown)
        list->showLayers(parameter(message, "Layers").toStringList());
    else if (message.type == MessageType::JobRenamed)
        list->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
    else if (message.type == MessageType::RenameStep)
        list->renameStep(textParameter(message, "OldStepName"), textParameter(message, "ChangeStepName"));
}

#include "JobList.moc"
