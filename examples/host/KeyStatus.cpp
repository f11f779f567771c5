#include "KeyStatus.h"

#include "MainWindow.h"
#include "Post.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <QtCore/QStringList>
#include <QtGui/QKeyEvent>

namespace {

struct ModifierKey
{
    int key;
    Qt::KeyboardModifier modifier;
    const char *name;
};

constexpr ModifierKey modifierKeys[] = {
    {Qt::Key_Control, Qt::ControlModifier, "Ctrl"},
    {Qt::Key_Shift, Qt::ShiftModifier, "Shift"},
    {Qt::Key_Alt, Qt::AltModifier, "Alt"},
};

/// Platforms do not agree on whether an event's modifiers include the key itself.
QString keysAfter(const QKeyEvent &event)
{
    QStringList held;
    for (const ModifierKey &key : modifierKeys) {
        const bool isHeld = event.key() == key.key ? event.type() == QEvent::KeyPress
                                                   : event.modifiers().testFlag(key.modifier);
        if (isHeld)
            held.append(QLatin1String(key.name));
    }
    return held.join(QLatin1Char('+'));
}

}

KeyStatus::KeyStatus(Post &post, const MainWindow &window)
    : m_post(post)
    , m_window(window)
{
}

/// Sees an event once for each widget that it passes on its way.
bool KeyStatus::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const QString keys = keysAfter(*static_cast<QKeyEvent *>(event));
    if (keys == m_told)
        return false;
    m_told = keys;
    QWidget *const frame = m_window.currentFrame(FrameKind::Graphic);
    const PluginMetaData message =
        hostMessage(QStringLiteral("ORVIK-GraphicEditor.dll"), MessageType::ShowKeys, {{"Keys", keys}});
    m_post.deliver("sendKeyBoardStatusToGraphic", message,
                   [&] { m_post.manager()->sendKeyBoardStatusToGraphic(frame, message); });
    return false;
}
