#pragma once

#include <QtCore/QObject>

class MainWindow;
class QTpluginsManger4CAM;

/// Tells the graphic frame that is shown which of the keys that modify others are held down.
class KeyStatus : public QObject
{
    Q_OBJECT

public:
    KeyStatus(QTpluginsManger4CAM *manager, const MainWindow &window);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTpluginsManger4CAM *m_manager;
    const MainWindow &m_window;
    QString m_told;
};
