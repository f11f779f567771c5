#pragma once

#include <QtWidgets/QMainWindow>

class QTpluginsManger;

/// The page with the desktop tools: what their plug-ins have built, each in its place.
class DesktopWindow : public QMainWindow
{
    Q_OBJECT

public:
    DesktopWindow();

    /// Takes what the manager holds. Tools that are not loaded leave their places empty.
    void place(const QTpluginsManger &manager);
    /// Deletes everything that plug-ins have made, before they are loaded again.
    void clear(QTpluginsManger &manager);

private:
    void placeMenu(QMenu *menu);
    void placeTools(const QString &title, const char *name, const QList<QAction *> &actions);
};
