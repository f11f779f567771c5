#include "MiniMap.h"

#include "boardPainting.h"
#include "messages.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <algorithm>

namespace {

constexpr double margin = 3;

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

void MiniMap::openStep(const QString &step, const QString &file)
{
    m_job = readJob(file);
    m_step = m_job.step(step);
    m_picture = {};
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
    const QSize pixels = size() * devicePixelRatioF();
    if (m_picture.size() != pixels)
        paintPicture();
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
    if (m_step.boards.isEmpty())
        return;

    // What the view does not show lies in the shade.
    const QRect area = toScreen().mapRect(m_visibleArea).toRect().intersected(rect().adjusted(1, 1, -2, -2));
    QPainterPath shade;
    shade.addRect(rect());
    shade.addRect(area);
    painter.fillPath(shade, QColor(0, 0, 0, 120));
    painter.setPen(areaColor);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(area);
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

void MiniMap::paintPicture()
{
    m_picture = QPixmap(size() * devicePixelRatioF());
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    m_picture.fill(BoardColors::background);
    if (m_step.boards.isEmpty())
        return;
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toScreen(), true);
    paintStep(painter, m_job, m_step);
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
