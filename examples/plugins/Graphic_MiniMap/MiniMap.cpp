#include "MiniMap.h"

#include "jobPainting.h"
#include "messages.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace {

constexpr double margin = 6;

const QColor backgroundColor(16, 20, 26);
const QColor areaColor(255, 214, 90);

}

MiniMap::MiniMap(QWidget *parent)
    : QWidget(parent)
{
    setMinimumSize(120, 90);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize MiniMap::sizeHint() const
{
    return {150, 110};
}

void MiniMap::openStep(const Step &step)
{
    m_step = step;
    update();
}

void MiniMap::showText(const QString &text)
{
    m_text = text;
    update();
}

void MiniMap::showVisibleArea(QRectF area)
{
    m_visibleArea = area;
    update();
}

void MiniMap::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor);
    painter.setRenderHint(QPainter::Antialiasing);

    if (m_step.boards.isEmpty())
        return;
    painter.setTransform(toScreen());
    paintStep(painter, m_step);

    painter.resetTransform();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(areaColor);
    const QRect area = toScreen().mapRect(m_visibleArea).toRect();
    painter.drawRect(area.intersected(rect().adjusted(1, 1, -2, -2)));
    painter.drawText(rect().adjusted(6, 4, -6, -4), Qt::AlignLeft | Qt::AlignTop, m_text);
}

void MiniMap::mousePressEvent(QMouseEvent *event)
{
    askViewToGoTo(event->localPos());
}

void MiniMap::mouseMoveEvent(QMouseEvent *event)
{
    askViewToGoTo(event->localPos());
}

QTransform MiniMap::toScreen() const
{
    const QRectF area = m_step.area.adjusted(-margin, -margin, margin, margin);
    const double scale = std::min(width() / area.width(), height() / area.height());
    return QTransform::fromTranslate(-area.center().x(), -area.center().y())
           * QTransform::fromScale(scale, -scale) * QTransform::fromTranslate(width() / 2.0, height() / 2.0);
}

void MiniMap::askViewToGoTo(QPointF screenPosition)
{
    emit sendMsgToManager(makeMessage("Graphic_MiniMap.dll", "Graphic_View.dll", MessageType::CenterOn,
                                      {{"Position", toScreen().inverted().map(screenPosition)}}));
}
