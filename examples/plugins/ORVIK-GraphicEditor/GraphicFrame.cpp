#include "messages.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QStatusBar>

/**
 * The window of one step of a job, in the graphic editor or in DFM.
 *
 * Hosts know it as a QWidget, and put elements into it as into any QMainWindow. Its title is the job and the
 * step. The end of its status bar, which the host gives it by using it, shows texts and keys.
 */
class GraphicFrame : public QMainWindow
{
    Q_OBJECT

public:
    GraphicFrame(QWidget *parent, const QString &job, const QString &step);

    void receive(const PluginMetaData &message);

signals:
    void stepRequested(const QString &job, const QString &step);

private:
    void setNames(const QString &job, const QString &step);

    QString m_job;
    QString m_step;
    QLabel *const m_text = new QLabel;
    QLabel *const m_keys = new QLabel;
};

GraphicFrame::GraphicFrame(QWidget *parent, const QString &job, const QString &step)
    : QMainWindow(parent)
{
    setWindowFlags(Qt::Widget);
    setNames(job, step);
    m_text->setObjectName(QStringLiteral("text"));
    m_keys->setObjectName(QStringLiteral("keys"));
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addPermanentWidget(m_text);
    statusBar()->addPermanentWidget(m_keys);
}

void GraphicFrame::receive(const PluginMetaData &message)
{
    // Texts and new names for one job reach DFM frames of all jobs.
    const bool concernsOtherJob =
        (message.type == MessageType::ShowText && textParameter(message, "JobName") != m_job)
        || (message.type == MessageType::JobRenamed && textParameter(message, "OldJobName") != m_job);
    if (concernsOtherJob)
        return;

    switch (message.type) {
    case MessageType::FrameOpened:
        setNames(textParameter(message, "JobName"), textParameter(message, "Step"));
        break;
    case MessageType::DfmFrameOpened:
        // There is too little room for a status bar beside the rules.
        statusBar()->hide();
        break;
    case MessageType::JobRenamed:
        setNames(textParameter(message, "NewJobName"), m_step);
        break;
    case MessageType::RenameStep:
        setNames(m_job, textParameter(message, "ChangeStepName"));
        break;
    case MessageType::ShowText:
        m_text->setText(textParameter(message, "Text"));
        break;
    case MessageType::ShowKeys:
        m_keys->setText(textParameter(message, "Keys"));
        break;
    case MessageType::SelectStep:
        emit stepRequested(textParameter(message, "JobName"), textParameter(message, "Step"));
        break;
    case MessageType::FrameClosed:
        deleteLater();
        break;
    default:
        break;
    }
}

void GraphicFrame::setNames(const QString &job, const QString &step)
{
    m_job = job;
    m_step = step;
    setWindowTitle(job + QStringLiteral(" | ") + step);
}

/// The frame belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetORVIKGraphicInstance(QWidget *parent, const QString &job,
                                                       const QString &step)
{
    return static_cast<QWidget *>(new GraphicFrame(parent, job, step));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *frame, PluginMetaData message)
{
    static_cast<GraphicFrame *>(static_cast<QWidget *>(frame))->receive(message);
}

#include "GraphicFrame.moc"
