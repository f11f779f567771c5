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
    switch (message.type) {
    case MessageType::ShowText:
        return view->showText(textParameter(message, "Text"));
    case MessageType::RunCommand:
        return view->runCommand(textParameter(message, "Command"));
    case MessageType::SelectLayer:
        return view->highlightLayer(textParameter(message, "Layer"));
    case MessageType::ShowLayer:
        return view->showLayer(textParameter(message, "Layer"), parameter(message, "Visible").toBool());
    case MessageType::CenterOn:
        return view->goTo(parameter(message, "Position").toPointF(), parameter(message, "Width").toDouble());
    case MessageType::OpenStep:
        return view->openStep(textParameter(message, "JobName"), textParameter(message, "Step"),
                              textParameter(message, "File"));
    case MessageType::JobRenamed:
        return view->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
    case MessageType::RenameStep:
        return view->renameStep(textParameter(message, "OldStepName"),
                                textParameter(message, "ChangeStepName"));
    case MessageType::ShowCompareJob:
        return view->compareWith(textParameter(message, "CompareJob"), textParameter(message, "File"));
    case MessageType::ShowFindings:
        return view->setFindings(parameter(message, "Findings").toList());
    default:
        return;
    }
}
