#include "GraphicView.h"

#include "jobPainting.h"
#include "messages.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25;
constexpr double moveStep = 0.2;
constexpr double gridPitch = 5;
constexpr double margin = 1;
constexpr int captionMargin = 4;

constexpr char ownName[] = "Graphic_View.dll";

const QColor backgroundColor(16, 20, 26);
const QColor gridColor(38, 46, 56);
const QColor captionColor(200, 208, 216);

}

GraphicView::GraphicView(QWidget *parent)
    : QWidget(parent)
{
    setMinimumSize(240, 160);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QString GraphicView::caption() const
{
    return QStringLiteral("%1 | %2, %3")
        .arg(m_jobName, m_stepName,
             m_highlightedLayer.isEmpty() ? QStringLiteral("all layers") : m_highlightedLayer);
}

void GraphicView::openStep(const QString &jobName, const QString &stepName)
{
    m_jobName = jobName;
    m_stepName = stepName;
    m_step = readStep(jobName, stepName);
    fit();
}

void GraphicView::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
    update();
}

void GraphicView::renameStep(const QString &newName)
{
    m_stepName = newName;
    update();
}

void GraphicView::compareWith(const QString &jobName)
{
    showText(jobName == m_jobName ? QString() : QStringLiteral("Compared with ") + jobName);
}

void GraphicView::showText(const QString &text)
{
    m_text = text;
    viewChanged();
}

void GraphicView::runCommand(const QString &command)
{
    const QByteArray slot = command.toLatin1();
    if (GraphicView::staticMetaObject.indexOfSlot(slot + "()") >= QWidget::staticMetaObject.methodCount())
        QMetaObject::invokeMethod(this, slot.constData());
}

void GraphicView::zoomIn()
{
    zoom(zoomStep, m_center);
}

void GraphicView::zoomOut()
{
    zoom(1 / zoomStep, m_center);
}

void GraphicView::left()
{
    moveBy(-moveStep, 0);
}

void GraphicView::right()
{
    moveBy(moveStep, 0);
}

void GraphicView::up()
{
    moveBy(0, moveStep);
}

void GraphicView::down()
{
    moveBy(0, -moveStep);
}

void GraphicView::fit()
{
    const QRectF area = m_step.area.adjusted(-margin, -margin, margin, margin);
    m_center = area.center();
    m_pixelsPerMillimetre =
        std::min(boardArea().width() / area.width(), boardArea().height() / area.height());
    m_fitted = true;
    viewChanged();
}

void GraphicView::allLayers()
{
    highlightLayer(QString());
}

void GraphicView::centerOn(QPointF position)
{
    m_center = position;
    m_fitted = false;
    viewChanged();
}

void GraphicView::highlightLayer(const QString &name)
{
    m_highlightedLayer = layerOf(m_step.job, name) ? name : QString();
    update();
    answerMatrix();
}

void GraphicView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor);
    painter.setRenderHint(QPainter::Antialiasing);

    painter.setClipRect(boardArea());
    painter.setTransform(toScreen());
    paintGrid(painter);
    paintStep(painter, m_step, m_highlightedLayer);

    painter.resetTransform();
    painter.setClipping(false);
    paintCaption(painter);
}

void GraphicView::resizeEvent(QResizeEvent *)
{
    if (m_fitted)
        fit();
    else
        viewChanged();
}

void GraphicView::showEvent(QShowEvent *)
{
    viewChanged();
}

void GraphicView::wheelEvent(QWheelEvent *event)
{
    zoom(std::pow(zoomStep, event->angleDelta().y() / 120.0), toScreen().inverted().map(event->position()));
}

void GraphicView::mousePressEvent(QMouseEvent *event)
{
    m_dragStart = event->pos();
}

void GraphicView::mouseMoveEvent(QMouseEvent *event)
{
    const QTransform toBoard = toScreen().inverted();
    const QPointF position = toBoard.map(event->localPos());
    if (event->buttons() & Qt::LeftButton) {
        const QPointF start = toBoard.map(QPointF(m_dragStart));
        m_dragStart = event->pos();
        centerOn(m_center + start - position);
    }
    emit sendMsgToManager(
        makeMessage(ownName, "Graphic_Coordinate.dll", MessageType::FollowView, {{"Position", position}}));
}

/// What the captions above and below leave.
QRectF GraphicView::boardArea() const
{
    const int captionHeight = fontMetrics().height() + 2 * captionMargin;
    return rect().adjusted(0, captionHeight, 0, m_text.isEmpty() ? 0 : -captionHeight);
}

QTransform GraphicView::toScreen() const
{
    return QTransform::fromTranslate(-m_center.x(), -m_center.y())
           * QTransform::fromScale(m_pixelsPerMillimetre, -m_pixelsPerMillimetre)
           * QTransform::fromTranslate(boardArea().center().x(), boardArea().center().y());
}

QRectF GraphicView::visibleArea() const
{
    return toScreen().inverted().mapRect(boardArea());
}

void GraphicView::zoom(double factor, QPointF fixedPosition)
{
    const double scale = std::clamp(m_pixelsPerMillimetre * factor, 1.0, 400.0);
    m_center = fixedPosition + (m_center - fixedPosition) * (m_pixelsPerMillimetre / scale);
    m_pixelsPerMillimetre = scale;
    m_fitted = false;
    viewChanged();
}

void GraphicView::moveBy(double widths, double heights)
{
    const QRectF area = visibleArea();
    centerOn(m_center + QPointF(widths * area.width(), heights * area.height()));
}

void GraphicView::viewChanged()
{
    update();
    emit sendMsgToManager(
        makeMessage(ownName, "Graphic_MiniMap.dll", MessageType::FollowView, {{"Area", visibleArea()}}));
}

/// Tells the matrix of the job, which lives in another frame, how much of the layer is to be seen here.
void GraphicView::answerMatrix()
{
    const Layer *const layer = layerOf(m_step.job, m_highlightedLayer);
    const int features = layer ? featureCount(*layer) * m_step.boards.size() : 0;
    emit sendMsgToManager(makeMessage(ownName, "Matrix.dll", MessageType::LayerShown,
                                      {{"DstType", "Matrix"},
                                       {"JobName", m_jobName},
                                       {"Step", m_stepName},
                                       {"Layer", m_highlightedLayer},
                                       {"Features", features}}));
}

void GraphicView::paintGrid(QPainter &painter) const
{
    if (m_pixelsPerMillimetre < 1.5)
        return;
    const QRectF area = visibleArea();
    painter.setPen(QPen(gridColor, 0));
    for (double x = std::ceil(area.left() / gridPitch) * gridPitch; x < area.right(); x += gridPitch)
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    for (double y = std::ceil(area.top() / gridPitch) * gridPitch; y < area.bottom(); y += gridPitch)
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
}

void GraphicView::paintCaption(QPainter &painter) const
{
    const QRect area = rect().adjusted(2 * captionMargin, captionMargin, -2 * captionMargin, -captionMargin);
    painter.setPen(captionColor);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, caption());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom, m_text);
}
