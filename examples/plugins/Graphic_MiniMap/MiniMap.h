#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

/// The whole board, small, with a rectangle around what a view shows. A click asks the view to go there.
class MiniMap : public QWidget
{
    Q_OBJECT

public:
    explicit MiniMap(QWidget *parent);

    QSize sizeHint() const override;
    void showText(const QString &text);

public slots:
    void showVisibleArea(QRectF area);

signals:
    void centerRequested(QPointF position);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QTransform toScreen() const;

    QRectF m_visibleArea;
    QString m_text;
};
