#include "DesktopPlugin.h"

#include <Toolbar_Tool.h>

/// Tools for the view, and one that another plug-in runs.
class GeneralTools : public DesktopPlugin, public Toolbar_Tool
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(Toolbar_Tool)

public:
    GeneralTools();

    QList<QAction *> createActions() override;
};

GeneralTools::GeneralTools()
    : DesktopPlugin("Toolbar_Tool")
{
}

QList<QAction *> GeneralTools::createActions()
{
    return makeCommands(
               {{QT_TRANSLATE_NOOP("Entries", "Grid"), "G"}, {QT_TRANSLATE_NOOP("Entries", "Snap"), "S"}},
               "Viewbar_View")
           + makeCommands({{QT_TRANSLATE_NOOP("Entries", "Plating area"), "F5"}}, "Plating_Area");
}

#include "GeneralTools.moc"
