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
    /// A task is named by a word that does not change with the language.
    void tick(const QString &task, const QString &text);
    void showText(const QString &text);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void addTask(const char *task, const QString &title, const QString &advice);

    enum Role { TaskRole = Qt::UserRole, TitleRole, AdviceRole };

    QListWidget *const m_tasks = new QListWidget;
};

GuideFrame::GuideFrame(QWidget *parent)
    : QWidget(parent)
{
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_tasks);
    // What does not fit goes on in the next line.
    m_tasks->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tasks->setWordWrap(true);
    m_tasks->setTextElideMode(Qt::ElideNone);
    m_tasks->setResizeMode(QListView::Adjust);
    addTask("layers", tr("Look at the layers"), tr("Choose one layer after the other in the matrix."));
    addTask("rules", tr("Check the rules"), tr("Press F5, or choose Operate, Run checks in DFM."));
    addTask("compare", tr("Compare jobs"), tr("Press Ctrl+D, or choose Actions, Compare with."));
    addTask("imager", tr("Send to the imager"),
            tr("Press Ctrl+Return, or choose Send to imager in the tool bar."));
    connect(m_tasks, &QListWidget::itemClicked, this, [this](const QListWidgetItem *item) {
        emit sendMsgToManager(makeMessage("Graphic_CamGuide.dll", "Graphic_Tips.dll", MessageType::ShowText,
                                          {{"DstType", "EngineerRoot"}, {"Text", item->data(AdviceRole)}}));
    });
}

/// A host may open a guide under the job's name with "|Guide" after it.
void GuideFrame::showJob(QString name)
{
    const QString suffix = QLatin1String("|Guide");
    if (name.endsWith(suffix))
        name.chop(suffix.size());
    setWindowTitle(name);
}

void GuideFrame::tick(const QString &task, const QString &text)
{
    for (int row = 0; row < m_tasks->count(); ++row) {
        QListWidgetItem *const item = m_tasks->item(row);
        if (item->data(TaskRole).toString() != task)
            continue;
        item->setCheckState(Qt::Checked);
        const QString title = item->data(TitleRole).toString();
        item->setText(text.isEmpty() ? title : tr("%1: %2").arg(title, text));
    }
}

void GuideFrame::showText(const QString &text)
{
    m_tasks->setToolTip(text);
}

void GuideFrame::addTask(const char *task, const QString &title, const QString &advice)
{
    auto *const item = new QListWidgetItem(title, m_tasks);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setCheckState(Qt::Unchecked);
    item->setData(TaskRole, QString::fromLatin1(task));
    item->setData(TitleRole, title);
    item->setData(AdviceRole, advice);
    item->setToolTip(advice);
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
    else if (message.type == MessageType::ShowText)
        frame->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::FrameClosed)
        frame->deleteLater();
}

#include "GuideFrame.moc"
