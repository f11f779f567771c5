#include "messages.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QStatusBar>

namespace {

void showJob(QMainWindow *frame, const QString &name)
{
    frame->setWindowTitle(QCoreApplication::translate("MatrixFrame", "Matrix %1").arg(name));
}

}

/// The window of a job's matrix. Hosts put elements into it as into any QMainWindow. It belongs to its
/// parent.
extern "C" Q_DECL_EXPORT void *GetORVIKMatrixInstance(QWidget *parent)
{
    auto *const frame = new QMainWindow(parent);
    frame->setWindowFlags(Qt::Widget);
    return static_cast<QWidget *>(frame);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *target, PluginMetaData message)
{
    auto *const frame = static_cast<QMainWindow *>(static_cast<QWidget *>(target));
    if (message.type == MessageType::FrameOpened)
        showJob(frame, textParameter(message, "JobName"));
    else if (message.type == MessageType::MatrixJobRenamed)
        showJob(frame, textParameter(message, "NewJobName"));
    else if (message.type == MessageType::ShowText)
        frame->statusBar()->showMessage(textParameter(message, "Text"));
    else if (message.type == MessageType::FrameClosed)
        frame->deleteLater();
}
