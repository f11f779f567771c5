#include "DesktopPlugin.h"

#include <Toolbar_Edit.h>

/// Adds test points to the view, and deletes those that are selected.
class EditTools : public DesktopPlugin, public Toolbar_Edit
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(Toolbar_Edit)

public:
    EditTools();

    QList<QAction *> createActions() override;
};

EditTools::EditTools()
    : DesktopPlugin("Toolbar_Edit")
{
}

QList<QAction *> EditTools::createActions()
{
    return makeCommands({{QT_TRANSLATE_NOOP("Entries", "Add"), "Ins"},
                         {QT_TRANSLATE_NOOP("Entries", "Duplicate"), "Ctrl+D"},
                         {QT_TRANSLATE_NOOP("Entries", "Delete"), "Del"}},
                        "Viewbar_View");
}

#include "EditTools.moc"
