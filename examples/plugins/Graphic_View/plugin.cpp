#include "GraphicView.h"
#include "messages.h"

/// The view belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetViewInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new GraphicView(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const view = static_cast<GraphicView *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        view->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::RunCommand)
        view->runCommand(textParameter(message, "Command"));
    else if (message.type == MessageType::SelectLayer)
        view->highlightLayer(textParameter(message, "Layer"));
    else if (message.type == MessageType::CenterOn)
        view->centerOn(parameter(message, "Position").toPointF());
    else if (message.type == MessageType::OpenStep)
        view->openStep(textParameter(message, "JobName"), textParameter(message, "Step"));
    else if (message.type == MessageType::JobRenamed)
        view->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
    else if (message.type == MessageType::RenameStep)
        view->renameStep(textParameter(message, "ChangeStepName"));
    else if (message.type == MessageType::ShowCompareJob)
        view->compareWith(textParameter(message, "CompareJob"));
}
