#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

/// The board in its own coordinates. The wheel zooms, dragging moves, and so do the slots.
class GraphicView : public QWidget
{
    Q_OBJECT

public:
    explicit GraphicView(QWidget *parent);

    void showText(const QString &text);
    void runCommand(const QString &command);

public slots:
    void zoomIn();
    void zoomOut();
    void left();
    void right();
    void up();
    void down();
    void fit();
    void allLayers();
    void centerOn(QPointF position);
    void highlightLayer(const QString &name);

signals:
    void cursorMoved(QPointF position);
    void visibleAreaChanged(QRectF area);

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
    void paintGrid(QPainter &painter) const;
    void paintCaption(QPainter &painter) const;

    QPointF m_center;
    double m_pixelsPerMillimetre = 1;
    bool m_fitted = true;
    QPoint m_dragStart;
    QString m_highlightedLayer;
    QString m_text;
};
