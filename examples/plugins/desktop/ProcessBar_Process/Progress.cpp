#include "DesktopPlugin.h"

#include <ProcessBar_Process.h>

/// Where plug-ins send how far their work has come. The menu bar's plug-in has the display.
class Progress : public DesktopPlugin, public ProcessBar_Process
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(ProcessBar_Process)

public:
    Progress();

    void setValue(int percent) override;
    void recMsgFromManager(PluginMetaData message) override;
};

Progress::Progress()
    : DesktopPlugin("ProcessBar_Process")
{
}

void Progress::setValue(int percent)
{
    send("MenuBar_Menu", MessageType::ShowProgress, {{"Percent", percent}});
}

void Progress::recMsgFromManager(PluginMetaData message)
{
    if (message.type == MessageType::ShowProgress)
        setValue(parameter(message, "Percent").toInt());
}

#include "Progress.moc"
