#include "MenuBarEnd.h"

#include <QtCore/QEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStyleOptionMenuItem>

MenuBarEnd::MenuBarEnd(QMenuBar *menuBar, QLayout *content)
    : m_menuBar(menuBar)
{
    content->setContentsMargins(0, 0, 0, 0);
    setLayout(content);
    menuBar->setCornerWidget(this);
}

QSize MenuBarEnd::sizeHint() const
{
    QStyleOptionMenuItem menu;
    menu.initFrom(m_menuBar);
    const QSize text(0, m_menuBar->fontMetrics().height());
    const QSize menuSize = style()->sizeFromContents(QStyle::CT_MenuBarItem, &menu, text, m_menuBar);
    return {QWidget::sizeHint().width(), menuSize.height()};
}

QSize MenuBarEnd::minimumSizeHint() const
{
    return sizeHint();
}

/// Setting it again is what makes the bar ask for the size.
bool MenuBarEnd::event(QEvent *event)
{
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        m_menuBar->setCornerWidget(this);
    return handled;
}
