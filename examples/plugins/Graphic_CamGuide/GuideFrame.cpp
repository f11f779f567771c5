#include "messages.h"

#include <QtWidgets/QListWidget>
#include <QtWidgets/QVBoxLayout>

/// What is to be done to a job. Others report what is done; a click on a task tells how it is done.
class GuideFrame : public QWidget
{
    Q_OBJECT

public:
    explicit GuideFrame(QWidget *parent);

    void showJob(QString name);
    void tick(const QString &task, const QString &text);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void addTask(const QString &task, const QString &advice);

    QListWidget *const m_tasks = new QListWidget;
};

GuideFrame::GuideFrame(QWidget *parent)
    : QWidget(parent)
{
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_tasks);
    addTask(QStringLiteral("Look at the layers"),
            QStringLiteral("Choose one layer after the other in the matrix."));
    addTask(QStringLiteral("Check the rules"), QStringLiteral("Choose Operate, Run checks in DFM."));
    addTask(QStringLiteral("Build the panel"),
            QStringLiteral("Choose Step, Panelize in the graphic editor."));
    addTask(QStringLiteral("Send to the imager"), QStringLiteral("Choose Send in the tool bar."));
    connect(m_tasks, &QListWidget::itemClicked, this, [this](const QListWidgetItem *item) {
        emit sendMsgToManager(makeMessage("Graphic_CamGuide.dll", "Graphic_Tips.dll", MessageType::ShowText,
                                          {{"DstType", "EngineerRoot"}, {"Text", item->data(Qt::UserRole)}}));
    });
}

/// A host may open a guide under the job's name with "|Guide" after it.
void GuideFrame::showJob(QString name)
{
    const QString suffix = QStringLiteral("|Guide");
    if (name.endsWith(suffix))
        name.chop(suffix.size());
    setWindowTitle(name);
}

void GuideFrame::tick(const QString &task, const QString &text)
{
    for (int row = 0; row < m_tasks->count(); ++row) {
        QListWidgetItem *const item = m_tasks->item(row);
        if (!item->text().startsWith(task))
            continue;
        item->setCheckState(Qt::Checked);
        item->setText(task + QStringLiteral(": ") + text);
    }
}

void GuideFrame::addTask(const QString &task, const QString &advice)
{
    auto *const item = new QListWidgetItem(task, m_tasks);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setCheckState(Qt::Unchecked);
    item->setData(Qt::UserRole, advice);
}

/// The frame belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginCamGuideInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new GuideFrame(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *target, PluginMetaData message)
{
    auto *const frame = static_cast<GuideFrame *>(static_cast<QWidget *>(target));
    if (message.type == MessageType::GuideOpened)
        frame->showJob(textParameter(message, "JobName"));
    else if (message.type == MessageType::JobRenamed)
        frame->showJob(textParameter(message, "NewJobName"));
    else if (message.type == MessageType::TaskDone)
        frame->tick(textParameter(message, "Task"), textParameter(message, "Text"));
    else if (message.type == MessageType::FrameClosed)
        frame->deleteLater();
}

#include "GuideFrame.moc"
