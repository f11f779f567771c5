#pragma once

#include <QtWidgets/QWidget>

class QMenuBar;

/// The right end of a menu bar. The bar itself neither gives way to what grows there, nor draws its menus
/// well when that is higher than they are.
class MenuBarEnd : public QWidget
{
    Q_OBJECT

public:
    /// Belongs to the menu bar.
    MenuBarEnd(QMenuBar *menuBar, QLayout *content);

    /// As wide as the content, and as high as a menu.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;

private:
    QMenuBar *m_menuBar;
};
