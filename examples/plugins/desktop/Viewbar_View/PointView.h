#pragma once

#include "board.h"

#include <QtCore/QHash>
#include <QtGui/QPixmap>
#include <QtGui/QTransform>
#include <QtWidgets/QWidget>

struct TestPoint
{
    QPointF position;
    bool selected;
};

/// The board of a part, and the test points that the user puts on it. Each part keeps its own.
class PointView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString caption READ caption)
    Q_PROPERTY(QString text READ text)

public:
    PointView();

    QString caption() const;
    QString text() const { return m_text; }
    QVector<QPointF> positions() const;

    void showPart(const QString &file);
    void showText(const QString &part, const QString &text);
    void showPoints(const QVector<QPointF> &positions);
    void showCounted(const QString &part, const QString &layer, const QRectF &area);
    void runCommand(const QString &command);

signals:
    void mouseMoved(QPointF position);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    using Command = void (PointView::*)();
    static const QHash<QString, Command> &commands();

    void add();
    void duplicateSelected();
    void deleteSelected();
    void moveLeft() { moveSelected({-moveStep, 0}); }
    void moveRight() { moveSelected({moveStep, 0}); }
    void moveUp() { moveSelected({0, moveStep}); }
    void moveDown() { moveSelected({0, -moveStep}); }
    void selectAll();
    void selectNone();
    void selectNext();
    void invertSelection();
    void switchGrid();
    void snapSelected();

    void moveSelected(QPointF distance);
    QPointF onBoard(QPointF position) const;
    QRectF boardArea() const;
    QTransform toScreen() const;
    void paintPicture();
    void paintGrid(QPainter &painter) const;
    void paintPoints(QPainter &painter) const;
    void paintCaptions(QPainter &painter) const;

    static constexpr double moveStep = 2;

    Job m_job;
    Step m_step;
    /// The board, painted once for each size and layer.
    QPixmap m_picture;
    QHash<QString, QVector<TestPoint>> m_pointsOfParts;
    QVector<TestPoint> m_points;
    QString m_text;
    QString m_countedLayer;
    QRectF m_counted;
    bool m_showsGrid = false;
    QPointF m_dragStart;
};
