#pragma once

#include <QtCore/QObject>

class MainWindow;
class Post;

/// Tells the graphic frame that is shown which of the keys that modify others are held down.
class KeyStatus : public QObject
{
    Q_OBJECT

public:
    KeyStatus(Post &post, const MainWindow &window);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Post &m_post;
    const MainWindow &m_window;
    QString m_told;
};
