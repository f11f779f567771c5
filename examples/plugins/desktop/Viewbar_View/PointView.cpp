#include "PointView.h"

#include "boardPainting.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace {

const QColor gridColor(255, 255, 255, 70);
const QColor captionColor(215, 220, 225);
const QColor pointColor(90, 220, 255);
const QColor selectedColor(255, 215, 70);
constexpr int captionMargin = 6;
constexpr double gridPitch = 5;
constexpr double pointRadius = 1.2;
constexpr double sitePitch = 10;

}

PointView::PointView()
{
    setMouseTracking(true);
    setMinimumSize(240, 180);
}

QString PointView::caption() const
{
    if (m_job.isEmpty())
        return tr("No part is selected");
    const auto selected = std::count_if(m_points.begin(), m_points.end(), std::mem_fn(&TestPoint::selected));
    return tr("%1 %2, job %3: %4 test points, %5 selected")
        .arg(m_job.part.number, m_job.part.revision, m_job.part.jobName)
        .arg(m_points.size())
        .arg(selected);
}

QVector<QPointF> PointView::positions() const
{
    QVector<QPointF> positions;
    for (const TestPoint &point : m_points)
        positions.append(point.position);
    return positions;
}

void PointView::showPart(const QString &file)
{
    m_pointsOfParts.insert(m_job.part.number, m_points);
    m_job = readJob(file);
    m_step = m_job.step(QLatin1String("pcb"));
    m_points = m_pointsOfParts.value(m_job.part.number);
    m_text.clear();
    m_countedLayer.clear();
    m_counted = {};
    m_picture = {};
    update();
}

void PointView::showText(const QString &part, const QString &text)
{
    if (m_job.part.number != part)
        return;
    m_text = text;
    m_countedLayer.clear();
    m_counted = {};
    m_picture = {};
    update();
}

void PointView::showPoints(const QVector<QPointF> &positions)
{
    m_points.clear();
    for (const QPointF &position : positions)
        m_points.append({onBoard(position), false});
    update();
}

void PointView::showCounted(const QString &part, const QString &layer, const QRectF &area)
{
    if (m_job.part.number != part)
        return;
    if (layer != m_countedLayer)
        m_picture = {};
    m_counted = layer == m_countedLayer ? m_counted | area : area;
    m_countedLayer = layer;
    update();
}

void PointView::runCommand(const QString &command)
{
    const Command known = commands().value(command);
    if (!known || m_job.isEmpty())
        return;
    (this->*known)();
    update();
}

void PointView::paintEvent(QPaintEvent *)
{
    if (m_picture.size() != size() * devicePixelRatioF())
        paintPicture();
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_job.isEmpty()) {
        painter.save();
        painter.setTransform(toScreen(), true);
        painter.fillRect(m_counted, QColor(255, 255, 255, 70));
        if (m_showsGrid)
            paintGrid(painter);
        painter.restore();
        paintPoints(painter);
    }
    paintCaptions(painter);
}

void PointView::mousePressEvent(QMouseEvent *event)
{
    const QPointF position = toScreen().inverted().map(event->localPos());
    m_dragStart = position;
    const bool adds = event->modifiers().testFlag(Qt::ControlModifier);
    const auto isHit = [position](const TestPoint &point) {
        const QPointF distance = point.position - position;
        return std::hypot(distance.x(), distance.y()) <= pointRadius;
    };
    const auto hit = std::find_if(m_points.begin(), m_points.end(), isHit);
    const bool keeps = adds || (hit != m_points.end() && hit->selected);
    if (!keeps)
        selectNone();
    if (hit != m_points.end())
        hit->selected = true;
    update();
}

void PointView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_job.isEmpty())
        return;
    const QPointF position = toScreen().inverted().map(event->localPos());
    if (event->buttons().testFlag(Qt::LeftButton)) {
        moveSelected(position - m_dragStart);
        m_dragStart = position;
        update();
    }
    emit mouseMoved(position);
}

const QHash<QString, PointView::Command> &PointView::commands()
{
    static const QHash<QString, Command> commands{
        {"add", &PointView::add},
        {"duplicate", &PointView::duplicateSelected},
        {"delete", &PointView::deleteSelected},
        {"left", &PointView::moveLeft},
        {"right", &PointView::moveRight},
        {"up", &PointView::moveUp},
        {"down", &PointView::moveDown},
        {"all", &PointView::selectAll},
        {"none", &PointView::selectNone},
        {"next", &PointView::selectNext},
        {"invert", &PointView::invertSelection},
        {"grid", &PointView::switchGrid},
        {"snap", &PointView::snapSelected},
    };
    return commands;
}

/// New points fill the board row by row.
void PointView::add()
{
    const QSizeF size = m_step.area.size();
    const int columns = static_cast<int>(size.width() / sitePitch) - 1;
    const int rows = static_cast<int>(size.height() / sitePitch) - 1;
    const int site = m_points.size() % (columns * rows);
    selectNone();
    m_points.append({QPointF(site % columns + 1, site / columns + 1) * sitePitch, true});
}

void PointView::duplicateSelected()
{
    QVector<TestPoint> copies;
    for (TestPoint &point : m_points) {
        if (point.selected)
            copies.append({onBoard(point.position + QPointF(gridPitch, gridPitch)), true});
        point.selected = false;
    }
    m_points += copies;
}

void PointView::deleteSelected()
{
    m_points.erase(std::remove_if(m_points.begin(), m_points.end(), std::mem_fn(&TestPoint::selected)),
                   m_points.end());
}

void PointView::selectAll()
{
    for (TestPoint &point : m_points)
        point.selected = true;
}

void PointView::selectNone()
{
    for (TestPoint &point : m_points)
        point.selected = false;
}

void PointView::selectNext()
{
    if (m_points.isEmpty())
        return;
    const auto selected = std::find_if(m_points.begin(), m_points.end(), std::mem_fn(&TestPoint::selected));
    const auto next = selected == m_points.end() ? m_points.begin() : std::next(selected);
    selectNone();
    (next == m_points.end() ? m_points.begin() : next)->selected = true;
}

void PointView::invertSelection()
{
    for (TestPoint &point : m_points)
        point.selected = !point.selected;
}

void PointView::switchGrid()
{
    m_showsGrid = !m_showsGrid;
}

void PointView::snapSelected()
{
    const auto snapped = [](double value) { return std::round(value / gridPitch) * gridPitch; };
    for (TestPoint &point : m_points) {
        if (point.selected)
            point.position = onBoard({snapped(point.position.x()), snapped(point.position.y())});
    }
}

void PointView::moveSelected(QPointF distance)
{
    for (TestPoint &point : m_points) {
        if (point.selected)
            point.position = onBoard(point.position + distance);
    }
}

QPointF PointView::onBoard(QPointF position) const
{
    const QRectF board = m_step.area;
    return {std::clamp(position.x(), board.left(), board.right()),
            std::clamp(position.y(), board.top(), board.bottom())};
}

/// What the captions above and below leave.
QRectF PointView::boardArea() const
{
    const int captionHeight = fontMetrics().height() + 2 * captionMargin;
    return rect().adjusted(captionHeight, captionHeight, -captionHeight, -captionHeight);
}

QTransform PointView::toScreen() const
{
    const QRectF board = m_step.area;
    if (board.isEmpty())
        return {};
    const double scale = std::min(boardArea().width() / board.width(), boardArea().height() / board.height());
    return QTransform::fromTranslate(-board.center().x(), -board.center().y())
           * QTransform::fromScale(scale, -scale)
           * QTransform::fromTranslate(boardArea().center().x(), boardArea().center().y());
}

void PointView::paintPicture()
{
    m_picture = QPixmap(size() * devicePixelRatioF());
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    m_picture.fill(BoardColors::background);
    if (m_job.isEmpty())
        return;
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toScreen(), true);
    paintStep(painter, m_job, m_step, m_countedLayer);
}

void PointView::paintGrid(QPainter &painter) const
{
    const QRectF board = m_step.area;
    painter.setPen(QPen(gridColor, 0));
    for (double x = board.left(); x <= board.right(); x += gridPitch)
        painter.drawLine(QPointF(x, board.top()), QPointF(x, board.bottom()));
    for (double y = board.top(); y <= board.bottom(); y += gridPitch)
        painter.drawLine(QPointF(board.left(), y), QPointF(board.right(), y));
}

/// In screen coordinates, since texts would stand upside down in those of the board.
void PointView::paintPoints(QPainter &painter) const
{
    const QTransform transform = toScreen();
    const double radius = transform.m11() * pointRadius;
    for (int index = 0; index < m_points.size(); ++index) {
        const TestPoint &point = m_points.at(index);
        const QPointF center = transform.map(point.position);
        painter.setPen(QPen(point.selected ? selectedColor : pointColor, 2.5));
        painter.setBrush(QColor(0, 0, 0, 150));
        painter.drawEllipse(center, radius, radius);
        painter.drawText(QRectF(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius),
                         Qt::AlignCenter, tr("T%1").arg(index + 1));
    }
}

void PointView::paintCaptions(QPainter &painter) const
{
    const QRect area = rect().adjusted(2 * captionMargin, captionMargin, -2 * captionMargin, -captionMargin);
    painter.setPen(captionColor);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, caption());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom, m_text);
}
