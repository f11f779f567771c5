#include "GraphicView.h"

#include "boardPainting.h"
#include "messages.h"

#include <QtCore/QLocale>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25;
constexpr double moveStep = 0.2;
constexpr double margin = 1;
constexpr int captionMargin = 4;

const QColor gridColor(36, 43, 53);
const QColor captionColor(206, 213, 221);
const QColor captionBackground(16, 20, 26, 210);
const QColor selectedColor(255, 255, 255);
const QColor findingColor(255, 92, 80);
const QColor comparedColor(255, 90, 220);
const QColor measureColor(255, 214, 90);

/// The finest of these that is not too fine to be seen.
double gridPitch(double pixelsPerMillimetre)
{
    for (const double pitch : {0.1, 0.5, 1.0, 5.0, 10.0}) {
        if (pitch * pixelsPerMillimetre >= 12)
            return pitch;
    }
    return 50;
}

}

GraphicView::GraphicView(QWidget *parent)
    : QGraphicsView(parent)
{
    setScene(new QGraphicsScene(this));
    setMinimumSize(240, 160);
    setFrameShape(QFrame::NoFrame);
    setRenderHint(QPainter::Antialiasing);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setViewportUpdateMode(FullViewportUpdate);
    setTransformationAnchor(NoAnchor);
    setMouseTracking(true);
    // The texts of the host stand in labels beside the view; a board has no use for the keyboard focus.
    setFocusPolicy(Qt::ClickFocus);
}

QString GraphicView::caption() const
{
    const int shown = visibleLayers().size();
    QString layers = m_highlightedLayer;
    if (layers.isEmpty() && shown == m_layers.size())
        layers = tr("all layers");
    else if (layers.isEmpty())
        layers = tr("%1 of %2 layers").arg(shown).arg(m_layers.size());
    return QLatin1String("%1 | %2, %3").arg(m_jobName, m_stepName, layers);
}

QStringList GraphicView::visibleLayers() const
{
    QStringList names;
    for (const Layer &layer : m_layers) {
        if (m_visible.contains(layer.name))
            names.append(layer.name);
    }
    return names;
}

int GraphicView::featureCount() const
{
    int count = 0;
    for (const Layer &layer : m_layers)
        count += layer.featureCount();
    return count * m_step.boards.size();
}

void GraphicView::openStep(const QString &jobName, const QString &stepName, const QString &file)
{
    m_jobName = jobName;
    m_stepName = stepName;
    QString error;
    m_job = readJob(file, &error);
    m_step = m_job.step(stepName);
    m_layers = m_job.layers;
    buildScene();
    m_visible.clear();
    for (const QString &layer : layersInOverview())
        m_visible.insert(layer);
    applyLayers();
    showText(error);
    fit();
}

void GraphicView::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
    viewport()->update();
}

void GraphicView::renameStep(const QString &oldName, const QString &newName)
{
    if (m_stepName == oldName)
        m_stepName = newName;
    viewport()->update();
}

/// Draws what only the other job has over this one, and says how much that is.
void GraphicView::compareWith(const QString &jobName, const QString &file)
{
    m_compared.clear();
    if (jobName.isEmpty() || jobName == m_jobName) {
        showText({});
        return;
    }
    const Job other = readJob(file);
    int here = 0;
    int there = 0;
    for (const Layer &layer : qAsConst(m_job.layers)) {
        const Layer *const same = other.layer(layer.name);
        here += same ? featuresOnlyIn(layer, *same).featureCount() : layer.featureCount();
    }
    for (const Layer &layer : other.layers) {
        const Layer *const same = m_job.layer(layer.name);
        Layer difference = same ? featuresOnlyIn(layer, *same) : layer;
        difference.color = comparedColor;
        there += difference.featureCount();
        if (isInOverview(layer))
            m_compared.append(difference);
    }
    showText(tr("Compared with %1: %2 features only here, %3 only there").arg(jobName).arg(here).arg(there));
}

void GraphicView::showText(const QString &text)
{
    m_text = text;
    viewport()->update();
}

/// A command is the name of a slot of this class.
void GraphicView::runCommand(const QString &command)
{
    const QByteArray slot = command.toLatin1();
    if (staticMetaObject.indexOfSlot(slot + "()") >= QGraphicsView::staticMetaObject.methodCount())
        QMetaObject::invokeMethod(this, slot.constData());
}

void GraphicView::zoomIn()
{
    zoom(zoomStep);
}

void GraphicView::zoomOut()
{
    zoom(1 / zoomStep);
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
    const int captionHeight = 2 * (fontMetrics().height() + 2 * captionMargin);
    const QRectF area = m_step.area.adjusted(-margin, -margin, margin, margin);
    const double scale = std::min(viewport()->width() / area.width(),
                                  std::max(40, viewport()->height() - captionHeight) / area.height());
    setTransform(QTransform::fromScale(scale, -scale));
    centerOn(area.center());
    m_fitted = true;
    viewChanged();
}

void GraphicView::allLayers()
{
    m_film = Film::None;
    m_highlightedLayer.clear();
    showLayers(layersInOverview());
    tellMatrix();
}

void GraphicView::signalLayers()
{
    showKind("signal");
}

void GraphicView::drillLayers()
{
    showKind("drill");
}

void GraphicView::solderMask()
{
    showKind("mask");
}

void GraphicView::silkScreen()
{
    showKind("silk");
}

void GraphicView::routLayer()
{
    showKind("rout");
}

void GraphicView::topCopper()
{
    showLayers({QLatin1String("top")});
}

void GraphicView::bottomCopper()
{
    showLayers({QLatin1String("bottom")});
}

void GraphicView::topMask()
{
    showLayers({QLatin1String("mask-top")});
}

void GraphicView::bottomMask()
{
    showLayers({QLatin1String("mask-bottom")});
}

void GraphicView::positiveImage()
{
    showFilm(Film::Positive);
}

void GraphicView::negativeImage()
{
    showFilm(Film::Negative);
}

void GraphicView::negative()
{
    showFilm(m_film == Film::Negative ? Film::None : Film::Negative);
}

void GraphicView::sendToImager()
{
    const QString layers = visibleLayers().join(QLatin1String(", "));
    showText(tr("Sent to the imager: %1").arg(layers));
    tell("Graphic_CamGuide.dll", MessageType::TaskDone,
         {{"DstType", "Guide"}, {"JobName", m_jobName}, {"Task", "imager"}, {"Text", m_stepName}});
}

/// All features of the layer that stands out, or of those that are visible.
void GraphicView::selectAll()
{
    m_selected.clear();
    for (int layer = 0; layer < m_layers.size(); ++layer) {
        const QString &name = m_layers.at(layer).name;
        const bool chosen =
            m_highlightedLayer.isEmpty() ? m_visible.contains(name) : name == m_highlightedLayer;
        for (int index = 0; chosen && index < m_layers.at(layer).featureCount(); ++index)
            m_selected.append({layer, index});
    }
    showText(tr("Selected features: %1").arg(QLocale().toString(m_selected.size())));
}

void GraphicView::clearSelection()
{
    m_selected.clear();
    m_measured.clear();
    showText({});
}

void GraphicView::hideSelected()
{
    if (m_selected.isEmpty())
        return;
    m_layersBefore.append(m_layers);
    for (int layer = 0; layer < m_layers.size(); ++layer) {
        QVector<int> indexes;
        for (const Feature &feature : qAsConst(m_selected)) {
            if (feature.layer == layer)
                indexes.append(feature.index);
        }
        std::sort(indexes.begin(), indexes.end());
        m_layers[layer] = withoutFeatures(m_layers.at(layer), indexes);
    }
    const int count = m_selected.size();
    m_selected.clear();
    showText(tr("Hidden features: %1").arg(count));
}

void GraphicView::showHidden()
{
    if (m_layersBefore.isEmpty())
        return;
    m_selected.clear();
    m_layers = m_layersBefore.takeLast();
    showText({});
}

void GraphicView::measure()
{
    m_measures = !m_measures;
    m_measured.clear();
    viewport()->setCursor(m_measures ? Qt::CrossCursor : Qt::ArrowCursor);
    showText(m_measures ? tr("Click two points to measure between them") : QString());
}

void GraphicView::grid()
{
    m_showsGrid = !m_showsGrid;
    viewport()->update();
}

void GraphicView::showFindings()
{
    m_showsFindings = true;
    showText(m_findings.isEmpty() ? tr("No findings: run the checks with F5")
                                  : tr("Marked findings: %1").arg(m_findings.size()));
}

void GraphicView::hideFindings()
{
    m_showsFindings = false;
    showText({});
}

void GraphicView::endComparison()
{
    compareWith({}, {});
}

void GraphicView::countFeatures()
{
    showText(tr("Features in this step: %1").arg(QLocale().toString(featureCount())));
}

void GraphicView::pathLength()
{
    double length = 0;
    for (int i = 0; i < m_job.outline.size(); ++i)
        length += QLineF(m_job.outline.at(i), m_job.outline.at((i + 1) % m_job.outline.size())).length();
    showText(tr("Rout path of each board: %1 mm").arg(length, 0, 'f', 1));
}

void GraphicView::savePicture()
{
    const QString proposal = m_jobName + QLatin1Char('-') + m_stepName + QLatin1String(".png");
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save picture"), proposal, tr("Pictures (*.png)"));
    if (!file.isEmpty())
        showText(grab().save(file, "PNG") ? tr("Saved to %1").arg(QDir::toNativeSeparators(file))
                                          : tr("Cannot save %1").arg(QDir::toNativeSeparators(file)));
}

void GraphicView::goTo(QPointF position, double width)
{
    if (width > 0) {
        const double scale = viewport()->width() / width;
        setTransform(QTransform::fromScale(scale, -scale));
    }
    centerOn(position);
    m_fitted = false;
    viewChanged();
}

void GraphicView::highlightLayer(const QString &name)
{
    m_highlightedLayer = m_job.layer(name) ? name : QString();
    m_selected.clear();
    applyLayers();
    tellMatrix();
}

void GraphicView::showLayer(const QString &name, bool visible)
{
    visible ? void(m_visible.insert(name)) : void(m_visible.remove(name));
    applyLayers();
}

void GraphicView::setFindings(const QVariantList &positions)
{
    m_findings.clear();
    for (const QVariant &position : positions)
        m_findings.append(position.toPointF());
    viewport()->update();
}

void GraphicView::drawBackground(QPainter *painter, const QRectF &area)
{
    painter->fillRect(area, BoardColors::background);
    if (m_showsGrid) {
        const double pitch = gridPitch(transform().m11());
        painter->setPen(QPen(gridColor, 0));
        for (double x = std::ceil(area.left() / pitch) * pitch; x < area.right(); x += pitch)
            painter->drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
        for (double y = std::ceil(area.top() / pitch) * pitch; y < area.bottom(); y += pitch)
            painter->drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    if (m_step.boards.size() > 1)
        painter->fillRect(m_step.area, BoardColors::panel);
}

/// What is compared and what is selected lies over all layers.
void GraphicView::drawForeground(QPainter *painter, const QRectF &area)
{
    for (const QPointF &board : qAsConst(m_step.boards)) {
        painter->save();
        painter->translate(board);
        painter->setOpacity(0.7);
        for (const Layer &layer : qAsConst(m_compared))
            paintLayer(*painter, layer, area.translated(-board));
        painter->setOpacity(1);
        for (const Feature &feature : qAsConst(m_selected)) {
            Layer alone = featureAlone(m_layers.at(feature.layer), feature.index);
            alone.color = selectedColor;
            for (Drill &drill : alone.drills)
                drill.plated = false;
            paintLayer(*painter, alone, area.translated(-board));
        }
        painter->restore();
    }
}

/// Captions and marks have the size of texts, however large the board is shown.
void GraphicView::paintEvent(QPaintEvent *event)
{
    QGraphicsView::paintEvent(event);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    paintMarks(painter);
    paintCaptions(painter);
}

void GraphicView::resizeEvent(QResizeEvent *)
{
    if (m_fitted)
        fit();
    else
        viewChanged();
}

void GraphicView::showEvent(QShowEvent *event)
{
    QGraphicsView::showEvent(event);
    viewChanged();
}

void GraphicView::wheelEvent(QWheelEvent *event)
{
    const QPoint position = event->position().toPoint();
    const QPointF before = mapToScene(position);
    zoom(std::pow(zoomStep, event->angleDelta().y() / 120.0));
    const QPointF center = mapToScene(viewport()->rect().center());
    goTo(center + before - mapToScene(position), 0);
}

void GraphicView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->pos();
    m_dragged = event->pos();
}

void GraphicView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF position = mapToScene(event->pos());
    const bool drags = (event->pos() - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (event->buttons().testFlag(Qt::LeftButton) && drags && !m_measures) {
        const QPointF center = mapToScene(viewport()->rect().center());
        goTo(center + mapToScene(m_dragged) - position, 0);
        m_dragged = event->pos();
    }
    if (m_measured.size() == 1)
        viewport()->update();
    tell("Graphic_Coordinate.dll", MessageType::FollowView, {{"Position", position}});
}

void GraphicView::mouseReleaseEvent(QMouseEvent *event)
{
    if ((event->pos() - m_pressed).manhattanLength() >= QApplication::startDragDistance())
        return;
    const QPointF position = mapToScene(event->pos());
    if (!m_measures) {
        select(position, event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    }
    if (m_measured.size() == 2)
        m_measured.clear();
    m_measured.append(position);
    if (m_measured.size() == 2) {
        const QPointF distance = m_measured.at(1) - m_measured.at(0);
        showText(tr("Distance %1 mm (X %2, Y %3)")
                     .arg(std::hypot(distance.x(), distance.y()), 0, 'f', 3)
                     .arg(distance.x(), 0, 'f', 3)
                     .arg(distance.y(), 0, 'f', 3));
    }
}

void GraphicView::buildScene()
{
    scene()->clear();
    m_boardItems.clear();
    m_layerItems.clear();
    m_layerItems.resize(m_layers.size());
    const QRectF area = m_job.outline.boundingRect().adjusted(-margin, -margin, margin, margin);
    const QVector<int> order = paintingOrder(m_layers);
    for (const QPointF &position : qAsConst(m_step.boards)) {
        auto *const board = new BoardItem(m_job.outline);
        board->setPos(position);
        scene()->addItem(board);
        m_boardItems.append(board);
        for (const int index : order) {
            auto *const layer = new LayerItem(m_layers, index, area);
            layer->setPos(position);
            layer->setZValue(1 + order.indexOf(index));
            scene()->addItem(layer);
            m_layerItems[index].append(layer);
        }
    }
    // Room to bring any corner of the board to the middle of the view.
    const QSizeF size = m_step.area.size();
    scene()->setSceneRect(
        m_step.area.adjusted(-size.width() * 4, -size.height() * 4, size.width() * 4, size.height() * 4));
}

void GraphicView::showLayers(const QStringList &names)
{
    m_visible.clear();
    for (const QString &name : names)
        m_visible.insert(name);
    m_highlightedLayer.clear();
    applyLayers();
}

void GraphicView::showKind(const char *kind)
{
    QStringList names;
    for (const Layer &layer : qAsConst(m_layers)) {
        if (layer.kind == QLatin1String(kind))
            names.append(layer.name);
    }
    showLayers(names);
}

void GraphicView::showFilm(Film film)
{
    m_film = film;
    applyLayers();
}

/// A layer that stands out is shown in any case, and the others as if they were far away.
void GraphicView::applyLayers()
{
    for (BoardItem *const board : qAsConst(m_boardItems))
        board->showFilm(m_film);
    for (int index = 0; index < m_layers.size(); ++index) {
        const QString &name = m_layers.at(index).name;
        const bool highlighted = name == m_highlightedLayer;
        for (LayerItem *const item : qAsConst(m_layerItems.at(index))) {
            item->setVisible(highlighted || m_visible.contains(name));
            item->setOpacity(highlighted || m_highlightedLayer.isEmpty() ? 1.0 : 0.18);
            item->showFilm(m_film);
        }
    }
    viewport()->update();
    tell("Graphic_JobList.dll", MessageType::LayersShown, {{"Layers", visibleLayers()}});
}

QStringList GraphicView::layersInOverview() const
{
    QStringList names;
    for (const Layer &layer : m_layers) {
        if (isInOverview(layer))
            names.append(layer.name);
    }
    return names;
}

QRectF GraphicView::visibleArea() const
{
    return mapToScene(viewport()->rect()).boundingRect();
}

void GraphicView::zoom(double factor)
{
    const double scale = std::clamp(transform().m11() * factor, 0.5, 1000.0);
    const QPointF center = mapToScene(viewport()->rect().center());
    setTransform(QTransform::fromScale(scale, -scale));
    goTo(center, 0);
}

void GraphicView::moveBy(double widths, double heights)
{
    const QRectF area = visibleArea();
    goTo(area.center() + QPointF(widths * area.width(), heights * area.height()), 0);
}

void GraphicView::viewChanged()
{
    viewport()->update();
    tell("Graphic_MiniMap.dll", MessageType::FollowView, {{"Area", visibleArea()}});
}

/// What lies on top is selected, and what it is stands below the board.
void GraphicView::select(QPointF position, bool adds)
{
    if (!adds)
        m_selected.clear();
    QString description;
    const QVector<int> order = paintingOrder(m_layers);
    for (auto layer = order.rbegin(); layer != order.rend() && description.isEmpty(); ++layer) {
        const Layer &candidate = m_layers.at(*layer);
        if (!m_visible.contains(candidate.name) || candidate.kind == QLatin1String("rout"))
            continue;
        for (const QPointF &board : qAsConst(m_step.boards)) {
            for (int index = candidate.featureCount() - 1; index >= 0 && description.isEmpty(); --index) {
                if (!isFeatureAt(candidate, index, position - board))
                    continue;
                description = describeFeature(candidate, index);
                if (!m_selected.contains({*layer, index}))
                    m_selected.append({*layer, index});
            }
        }
    }
    showText(m_selected.size() > 1 ? tr("Selected features: %1").arg(QLocale().toString(m_selected.size()))
                                   : description);
}

/// Tells the matrix of the job, which lives in another frame, how much of the layer is to be seen here.
void GraphicView::tellMatrix()
{
    const Layer *const layer = m_job.layer(m_highlightedLayer);
    tell("Matrix.dll", MessageType::LayerShown,
         {{"DstType", "Matrix"},
          {"JobName", m_jobName},
          {"Step", m_stepName},
          {"Layer", m_highlightedLayer},
          {"Features", layer ? layer->featureCount() * m_step.boards.size() : 0}});
}

void GraphicView::paintCaptions(QPainter &painter) const
{
    const QRect area =
        viewport()->rect().adjusted(2 * captionMargin, captionMargin, -2 * captionMargin, -captionMargin);
    const QFontMetrics metrics(painter.font());
    painter.setPen(captionColor);
    const auto paint = [&](const QString &text, int alignment) {
        if (text.isEmpty())
            return;
        const QString shown = metrics.elidedText(text, Qt::ElideRight, area.width());
        const QRect place = painter.boundingRect(area, alignment, shown);
        painter.fillRect(place.adjusted(-captionMargin, -1, captionMargin, 1), captionBackground);
        painter.drawText(place, alignment, shown);
    };
    paint(caption(), Qt::AlignLeft | Qt::AlignTop);
    paint(m_text, Qt::AlignLeft | Qt::AlignBottom);
}

void GraphicView::paintMarks(QPainter &painter) const
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(findingColor, 2));
    const int findings = findingCount();
    for (int index = 0; index < findings; ++index) {
        for (const QPointF &board : m_step.boards)
            painter.drawEllipse(QPointF(mapFromScene(m_findings.at(index) + board)), 9, 9);
    }

    if (m_measured.isEmpty())
        return;
    const QPointF from = mapFromScene(m_measured.first());
    const QPointF to = m_measured.size() == 2 ? QPointF(mapFromScene(m_measured.last()))
                                              : QPointF(viewport()->mapFromGlobal(QCursor::pos()));
    painter.setPen(QPen(measureColor, 1.5));
    painter.drawLine(from, to);
    for (const QPointF &end : {from, to})
        painter.drawEllipse(end, 3, 3);
}

/// Elements do not know the frame or the manager that they belong to.
void GraphicView::tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters)
{
    emit sendMsgToManager(makeMessage("Graphic_View.dll", receiver, type, parameters));
}
