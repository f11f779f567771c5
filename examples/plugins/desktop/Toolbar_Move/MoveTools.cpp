#include "DesktopPlugin.h"

#include <Toolbar_Move.h>

/// Moves the test points that are selected.
class MoveTools : public DesktopPlugin, public Toolbar_Move
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(Toolbar_Move)

public:
    MoveTools();

    QList<QAction *> createActions() override;
};

MoveTools::MoveTools()
    : DesktopPlugin("Toolbar_Move")
{
}

QList<QAction *> MoveTools::createActions()
{
    return makeCommands({{QT_TRANSLATE_NOOP("Entries", "Left"), "Ctrl+Left"},
                         {QT_TRANSLATE_NOOP("Entries", "Right"), "Ctrl+Right"},
                         {QT_TRANSLATE_NOOP("Entries", "Up"), "Ctrl+Up"},
                         {QT_TRANSLATE_NOOP("Entries", "Down"), "Ctrl+Down"}},
                        "Viewbar_View");
}

#include "MoveTools.moc"
