#pragma once

#include "board.h"

#include <PluginMetaData.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtGui/QPixmap>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

/// The whole board, small, with a rectangle around what a view shows. A click asks the view to go there.
class MiniMap : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QRectF visibleArea READ visibleArea)

public:
    explicit MiniMap(QWidget *parent);

    QSize sizeHint() const override;
    QRectF visibleArea() const { return m_visibleArea; }
    void openStep(const QString &step, const QString &file);
    void showText(const QString &text);
    void showVisibleArea(QRectF area);

signals:
    void sendMsgToManager(const PluginMetaData &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QTransform toScreen() const;
    void paintPicture();
    void askViewToGoTo(QPointF screenPosition);

    Job m_job;
    Step m_step;
    /// The board, painted once for each size.
    QPixmap m_picture;
    QRectF m_visibleArea;
    QString m_text;
};
