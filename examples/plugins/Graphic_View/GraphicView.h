#pragma once

#include "BoardItems.h"

#include <PluginMetaData.h>

#include <QtCore/QLineF>
#include <QtCore/QSet>
#include <QtWidgets/QGraphicsView>

/**
 * A step in its own coordinates. The wheel zooms, dragging moves, a click selects a feature. So do the slots,
 * which are the commands that other elements may send. What the view shows is read when the step is opened;
 * names may change later.
 */
class GraphicView : public QGraphicsView
{
    Q_OBJECT
    Q_PROPERTY(QString caption READ caption)
    Q_PROPERTY(QString text READ text)
    Q_PROPERTY(QStringList visibleLayers READ visibleLayers)
    Q_PROPERTY(int featureCount READ featureCount)
    Q_PROPERTY(int selectedCount READ selectedCount)
    Q_PROPERTY(int findingCount READ findingCount)

public:
    explicit GraphicView(QWidget *parent);

    QString caption() const;
    QString text() const { return m_text; }
    QStringList visibleLayers() const;
    int featureCount() const;
    int selectedCount() const { return m_selected.size(); }
    int findingCount() const { return m_showsFindings ? m_findings.size() : 0; }

    void openStep(const QString &jobName, const QString &stepName, const QString &file);
    void renameJob(const QString &oldName, const QString &newName);
    void renameStep(const QString &oldName, const QString &newName);
    void compareWith(const QString &jobName, const QString &file);
    void showText(const QString &text);
    void runCommand(const QString &command);
    /// With a width in millimetres, as much is to be seen; otherwise as much as before.
    void goTo(QPointF position, double width);
    void highlightLayer(const QString &name);
    void showLayer(const QString &name, bool visible);
    void setFindings(const QVariantList &positions);

public slots:
    void zoomIn();
    void zoomOut();
    void left();
    void right();
    void up();
    void down();
    void fit();

    void allLayers();
    void signalLayers();
    void drillLayers();
    void solderMask();
    void silkScreen();
    void routLayer();

    void topCopper();
    void bottomCopper();
    void topMask();
    void bottomMask();
    void positiveImage();
    void negativeImage();
    void negative();
    void sendToImager();

    void selectAll();
    void clearSelection();
    void hideSelected();
    void showHidden();
    void measure();
    void grid();
    void showFindings();
    void hideFindings();
    void endComparison();
    void countFeatures();
    void pathLength();
    void savePicture();

signals:
    void sendMsgToManager(const PluginMetaData &message);

protected:
    void drawBackground(QPainter *painter, const QRectF &area) override;
    void drawForeground(QPainter *painter, const QRectF &area) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void buildScene();
    void showLayers(const QStringList &names);
    void showKind(const char *kind);
    void showFilm(Film film);
    void applyLayers();
    QStringList layersInOverview() const;
    QRectF visibleArea() const;
    void zoom(double factor);
    void moveBy(double widths, double heights);
    void viewChanged();
    void select(QPointF position, bool adds);
    void tellMatrix();
    void paintCaptions(QPainter &painter) const;
    void paintMarks(QPainter &painter) const;
    void tell(const char *receiver, qint32 type, const QMap<QString, QVariant> &parameters);

    QString m_jobName;
    QString m_stepName;
    Job m_job;
    Step m_step;
    /// The job's layers without what is hidden, and what they were before each hiding.
    QVector<Layer> m_layers;
    QVector<QVector<Layer>> m_layersBefore;
    QVector<Layer> m_compared;
    QVector<BoardItem *> m_boardItems;
    /// For each layer the items of all boards.
    QVector<QVector<LayerItem *>> m_layerItems;
    QSet<QString> m_visible;
    Film m_film = Film::None;
    QString m_highlightedLayer;
    QVector<Feature> m_selected;
    QVector<QPointF> m_findings;
    QVector<QPointF> m_measured;
    QString m_text;
    QPoint m_pressed;
    QPoint m_dragged;
    bool m_showsFindings = true;
    bool m_showsGrid = true;
    bool m_measures = false;
    bool m_fitted = true;
};
