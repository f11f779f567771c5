#include "DesktopPlugin.h"
#include "PointView.h"

#include <ViewWidget.h>

#include <QtCore/QPointer>

/// Hands messages to the view, and sends what happens in it.
class View : public DesktopPlugin, public ViewWidget
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(ViewWidget)

public:
    View();

    QWidget *createView() override;
    void recMsgFromManager(PluginMetaData message) override;

private:
    void sendPoints(const QString &receiver);
    void showPoints(const QVariantList &points);

    /// The host owns it, and may delete it before the last message comes.
    QPointer<PointView> m_view;
};

View::View()
    : DesktopPlugin("Viewbar_View")
{
}

QWidget *View::createView()
{
    m_view = new PointView;
    connect(m_view, &PointView::mouseMoved, this, [this](QPointF position) {
        send("Viewbar_Status", MessageType::FollowView, {{"Position", position}});
    });
    return m_view;
}

void View::recMsgFromManager(PluginMetaData message)
{
    if (!m_view)
        return;
    if (message.type == MessageType::SelectPart)
        m_view->showPart(textParameter(message, "File"));
    else if (message.type == MessageType::RunCommand)
        m_view->runCommand(textParameter(message, "Command"));
    else if (message.type == MessageType::AskForPoints)
        sendPoints(message.src);
    else if (message.type == MessageType::ShowPoints)
        showPoints(parameter(message, "Points").toList());
    else if (message.type == MessageType::AreaCounted)
        m_view->showCounted(textParameter(message, "Part"), textParameter(message, "Layer"),
                            parameter(message, "Area").toRectF());
    else if (message.type == MessageType::ShowText)
        m_view->showText(textParameter(message, "Part"), textParameter(message, "Text"));
}

void View::sendPoints(const QString &receiver)
{
    QVariantList points;
    for (const QPointF &position : m_view->positions())
        points.append(position);
    send(receiver, MessageType::ShowPoints, {{"Points", points}});
}

void View::showPoints(const QVariantList &points)
{
    QVector<QPointF> positions;
    for (const QVariant &point : points)
        positions.append(point.toPointF());
    m_view->showPoints(positions);
}

#include "plugin.moc"
