#pragma once

#include "sampleJob.h"

#include <PluginMetaData.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

/// A step in its own coordinates. The wheel zooms, dragging moves, and so do the slots, which are the
/// commands that other elements may send. What the view shows is read when the step is opened; names may
/// change later.
class GraphicView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString caption READ caption)
    Q_PROPERTY(QString text READ text)

public:
    explicit GraphicView(QWidget *parent);

    QString caption() const;
    QString text() const { return m_text; }
    void openStep(const QString &jobName, const QString &stepName);
    void renameJob(const QString &oldName, const QString &newName);
    void renameStep(const QString &newName);
    void compareWith(const QString &jobName);
    void showText(const QString &text);
    void runCommand(const QString &command);
    void centerOn(QPointF position);
    void highlightLayer(const QString &name);

public slots:
    void zoomIn();
    void zoomOut();
    void left();
    void right();
    void up();
    void down();
    void fit();
    void allLayers();

signals:
    void sendMsgToManager(const PluginMetaData &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QRectF boardArea() const;
    QTransform toScreen() const;
    QRectF visibleArea() const;
    void zoom(double factor, QPointF fixedPosition);
    void moveBy(double widths, double heights);
    void viewChanged();
    void answerMatrix();
    void paintGrid(QPainter &painter) const;
    void paintCaption(QPainter &painter) const;

    QString m_jobName;
    QString m_stepName;
    Step m_step;
    QPointF m_center;
    double m_pixelsPerMillimetre = 1;
    bool m_fitted = true;
    QPoint m_dragStart;
    QString m_highlightedLayer;
    QString m_text;
};
