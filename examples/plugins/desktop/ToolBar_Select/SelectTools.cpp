#include "DesktopPlugin.h"

#include <Toolbar_Select.h>

/// Selects test points in the view.
class SelectTools : public DesktopPlugin, public Toolbar_Select
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(Toolbar_Select)

public:
    SelectTools();

    QList<QAction *> createActions() override;
};

SelectTools::SelectTools()
    : DesktopPlugin("ToolBar_Select")
{
}

QList<QAction *> SelectTools::createActions()
{
    return makeCommands({{QT_TRANSLATE_NOOP("Entries", "All"), "Ctrl+A"},
                         {QT_TRANSLATE_NOOP("Entries", "None"), "Ctrl+Shift+A"},
                         {QT_TRANSLATE_NOOP("Entries", "Next"), "N"},
                         {QT_TRANSLATE_NOOP("Entries", "Invert"), "Ctrl+I"}},
                        "Viewbar_View");
}

#include "SelectTools.moc"
