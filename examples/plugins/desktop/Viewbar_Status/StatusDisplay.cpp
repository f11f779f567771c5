#include "DesktopPlugin.h"

#include <Viewbar_Status.h>

#include <QtCore/QPointF>
#include <QtCore/QPointer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

/// The part that is selected, what plug-ins have to say, and where in the view the mouse is.
class StatusDisplay : public DesktopPlugin, public Viewbar_Status
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(Viewbar_Status)

public:
    StatusDisplay();

    QWidget *createStatusWidget() override;
    void recMsgFromManager(PluginMetaData message) override;

private:
    void show(const char *label, const QString &text);

    /// The host owns it, and may delete it before the last message comes.
    QPointer<QWidget> m_widget;
};

StatusDisplay::StatusDisplay()
    : DesktopPlugin("Viewbar_Status")
{
}

QWidget *StatusDisplay::createStatusWidget()
{
    m_widget = new QWidget;
    auto *const row = new QHBoxLayout(m_widget);
    row->setContentsMargins(4, 2, 4, 2);
    for (const char *const name : {"part", "text", "position"}) {
        auto *const label = new QLabel;
        label->setObjectName(QLatin1String(name));
        row->addWidget(label);
    }
    // However long a text is, it does not widen the window.
    auto *const text = m_widget->findChild<QLabel *>(QLatin1String("text"));
    text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->setStretchFactor(text, 1);
    row->setSpacing(16);
    show("part", tr("No part"));
    return m_widget;
}

void StatusDisplay::recMsgFromManager(PluginMetaData message)
{
    if (message.type == MessageType::SelectPart)
        show("part", tr("Part %1").arg(textParameter(message, "Part")));
    else if (message.type == MessageType::ShowText)
        show("text", textParameter(message, "Text"));
    else if (message.type == MessageType::FollowView) {
        const QPointF position = parameter(message, "Position").toPointF();
        show("position", tr("X %1  Y %2 mm").arg(position.x(), 0, 'f', 2).arg(position.y(), 0, 'f', 2));
    }
}

void StatusDisplay::show(const char *label, const QString &text)
{
    if (m_widget)
        m_widget->findChild<QLabel *>(QLatin1String(label))->setText(text);
}

#include "StatusDisplay.moc"
