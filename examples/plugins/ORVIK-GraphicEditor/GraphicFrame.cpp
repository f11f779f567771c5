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
    void sendMsgToManager(const PluginMetaData &message);

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
    m_text->setObjectName(QLatin1String("text"));
    m_keys->setObjectName(QLatin1String("keys"));
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
        if (textParameter(message, "OldStepName") == m_step)
            setNames(m_job, textParameter(message, "ChangeStepName"));
        break;
    case MessageType::ShowText:
        m_text->setText(textParameter(message, "Text"));
        break;
    case MessageType::ShowKeys:
        m_keys->setText(textParameter(message, "Keys"));
        break;
    case MessageType::UseUnit:
        // Units belong to the element that shows coordinates.
        emit sendMsgToManager(makeMessage("ORVIK-GraphicEditor.dll", "Graphic_Coordinate.dll", message.type,
                                          {{"Unit", textParameter(message, "Unit")}}));
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
    setWindowTitle(job + QLatin1String(" | ") + step);
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
