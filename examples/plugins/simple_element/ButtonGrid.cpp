#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QToolButton>

namespace {

QToolButton *makeButton(QAction *action)
{
    auto *const button = new QToolButton;
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    return button;
}

}

/// The layout has no parent yet: it belongs to the layout that the host adds it to, as its buttons then
/// belong to the widget of that layout. The parent may have a layout already, so it is not used here.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *)
{
    auto *const grid = new QGridLayout;
    grid->setSpacing(1);
    grid->setContentsMargins(0, 0, 0, 0);
    const QList<QAction *> actions = makeEntryActions(simpleElement(PLUGIN_LIBRARY).entries, grid);
    for (QAction *const action : actions)
        grid->addWidget(makeButton(action), 0, grid->count());
    return grid;
}

/// The text becomes the tool tip of every button.
extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type != MessageType::ShowText)
        return;
    const auto *const grid = static_cast<QGridLayout *>(element);
    const QList<QAction *> actions = grid->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
    for (QAction *const action : actions)
        action->setToolTip(textParameter(message, "Text"));
}
