#include "glyphs.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPalette>

#include <utility>

namespace {

constexpr double gridSize = 16;

/// Drawings on a grid of 16 by 16, y down. "M x,y" begins a line, "L x,y" draws one, "C x,y,r" a circle and
/// "D x,y,r" a filled one, "R x,y,w,h" a rectangle and "B x,y,w,h" a filled one.
const QHash<QString, QString> &drawings()
{
    static const QHash<QString, QString> drawings{
        {"openJob", "M 1.5,13 L 1.5,3 L 6,3 L 7.5,5 L 13,5 L 13,7 M 1.5,13 L 4,7 L 15,7 L 12.5,13 L 1.5,13"},
        {"open", "M 1.5,13 L 1.5,3 L 6,3 L 7.5,5 L 13,5 L 13,7 M 1.5,13 L 4,7 L 15,7 L 12.5,13 L 1.5,13"},
        {"previewJob", "M 1,8 L 4,4.5 L 8,3.2 L 12,4.5 L 15,8 L 12,11.5 L 8,12.8 L 4,11.5 L 1,8 C 8,8,2.3"},
        {"closeJob", "R 2,3,12,10 M 5.5,5.5 L 10.5,10.5 M 10.5,5.5 L 5.5,10.5"},
        {"exit", "M 9,2.5 L 3,2.5 L 3,13.5 L 9,13.5 M 6.5,8 L 14,8 M 11,5 L 14,8 L 11,11"},
        {"save", "R 2,2,12,12 R 5,2,6,4.5 R 4.5,9,7,5"},
        {"savePicture", "R 1.5,3,13,10 M 1.5,11 L 6,7 L 9,10 L 11,8 L 14.5,11.5 C 11,6,1"},
        {"saveMatrix", "R 2,2,12,12 R 5,2,6,4.5 R 4.5,9,7,5"},
        {"exportReport",
         "M 4,1.5 L 10,1.5 L 13,4.5 L 13,14.5 L 4,14.5 L 4,1.5 M 6,7 L 11,7 M 6,9.5 L 11,9.5 M 6,12 L 9,12"},
        {"renameJob", "M 3,13 L 3.6,10 L 11,2.6 L 13.4,5 L 6,12.4 L 3,13 M 9.5,4 L 12,6.5"},
        {"renameStep", "M 3,13 L 3.6,10 L 11,2.6 L 13.4,5 L 6,12.4 L 3,13 M 9.5,4 L 12,6.5"},
        {"deleteJob", "M 2.5,4 L 13.5,4 M 6,4 L 6,2 L 10,2 L 10,4 M 4,4 L 5,14 L 11,14 L 12,4 M 7,6.5 L "
                      "7,11.5 M 9,6.5 L 9,11.5"},
        {"deleteStep", "M 2.5,4 L 13.5,4 M 6,4 L 6,2 L 10,2 L 10,4 M 4,4 L 5,14 L 11,14 L 12,4 M 7,6.5 L "
                       "7,11.5 M 9,6.5 L 9,11.5"},
        {"delete", "M 2.5,4 L 13.5,4 M 6,4 L 6,2 L 10,2 L 10,4 M 4,4 L 5,14 L 11,14 L 12,4 M 7,6.5 L 7,11.5 "
                   "M 9,6.5 L 9,11.5"},
        {"lockJob", "R 3,7,10,7 M 5,7 L 5,4.5 L 6.5,2.5 L 9.5,2.5 L 11,4.5 L 11,7 D 8,10.5,1.2"},
        {"unlockJob", "R 3,7,10,7 M 5,7 L 5,4.5 L 6.5,2.5 L 9.5,2.5 L 11,4 D 8,10.5,1.2"},
        {"setText", "M 3,5 L 3,3 L 13,3 L 13,5 M 8,3 L 8,13.5 M 6,13.5 L 10,13.5"},
        {"compareWith", "R 1.5,3,8,8 R 6.5,5.5,8,8"},
        {"zoomIn", "C 6.8,6.8,4.6 M 10.2,10.2 L 14.5,14.5 M 4.5,6.8 L 9.1,6.8 M 6.8,4.5 L 6.8,9.1"},
        {"zoomOut", "C 6.8,6.8,4.6 M 10.2,10.2 L 14.5,14.5 M 4.5,6.8 L 9.1,6.8"},
        {"left", "M 14,8 L 2.5,8 M 7,3.5 L 2.5,8 L 7,12.5"},
        {"right", "M 2,8 L 13.5,8 M 9,3.5 L 13.5,8 L 9,12.5"},
        {"up", "M 8,14 L 8,2.5 M 3.5,7 L 8,2.5 L 12.5,7"},
        {"down", "M 8,2 L 8,13.5 M 3.5,9 L 8,13.5 L 12.5,9"},
        {"rowUp", "M 8,14 L 8,2.5 M 3.5,7 L 8,2.5 L 12.5,7"},
        {"rowDown", "M 8,2 L 8,13.5 M 3.5,9 L 8,13.5 L 12.5,9"},
        {"fit", "M 2,5.5 L 2,2 L 5.5,2 M 10.5,2 L 14,2 L 14,5.5 M 14,10.5 L 14,14 L 10.5,14 M 5.5,14 L 2,14 "
                "L 2,10.5 R 5,5,6,6"},
        {"allLayers", "M 8,2 L 15,5.2 L 8,8.4 L 1,5.2 L 8,2 M 1,8 L 8,11.2 L 15,8 M 1,10.8 L 8,14 L 15,10.8"},
        {"showAll", "M 8,2 L 15,5.2 L 8,8.4 L 1,5.2 L 8,2 M 1,8 L 8,11.2 L 15,8 M 1,10.8 L 8,14 L 15,10.8"},
        {"hideAll", "M 8,2 L 15,5.2 L 8,8.4 L 1,5.2 L 8,2 M 2,14.5 L 14,1.5"},
        {"selectAll", "M 2,5 L 2,2 L 5,2 M 7,2 L 9,2 M 11,2 L 14,2 L 14,5 M 14,7 L 14,9 M 14,11 L 14,14 L "
                      "11,14 M 9,14 L 7,14 M 5,14 L 2,14 L 2,11 M 2,9 L 2,7 B 5,5,6,6"},
        {"clearSelection", "M 2,5 L 2,2 L 5,2 M 7,2 L 9,2 M 11,2 L 14,2 L 14,5 M 14,7 L 14,9 M 14,11 L 14,14 "
                           "L 11,14 M 9,14 L 7,14 M 5,14 L 2,14 L 2,11 M 2,9 L 2,7"},
        {"hideSelected",
         "M 1,8 L 4,4.5 L 8,3.2 L 12,4.5 L 15,8 L 12,11.5 L 8,12.8 L 4,11.5 L 1,8 M 3,13.5 L 13,2.5"},
        {"showHidden", "M 1,8 L 4,4.5 L 8,3.2 L 12,4.5 L 15,8 L 12,11.5 L 8,12.8 L 4,11.5 L 1,8 D 8,8,2.3"},
        {"measure",
         "M 1.5,11 L 11,1.5 L 14.5,5 L 5,14.5 L 1.5,11 M 4,8.5 L 6,10.5 M 6.5,6 L 8,7.5 M 9,3.5 L 11,5.5"},
        {"grid", "R 2,2,12,12 M 6,2 L 6,14 M 10,2 L 10,14 M 2,6 L 14,6 M 2,10 L 14,10"},
        {"snap", "M 4,2 L 4,9 L 5.5,12 L 8,13 L 10.5,12 L 12,9 L 12,2 M 2.5,5 L 5.5,5 M 10.5,5 L 13.5,5"},
        {"platingArea", "R 2,2,12,12 M 2,8 L 8,2 M 2,14 L 14,2 M 8,14 L 14,8"},
        {"nextStep", "R 2,3,7,10 M 10.5,5 L 13.5,8 L 10.5,11"},
        {"previousStep", "R 7,3,7,10 M 5.5,5 L 2.5,8 L 5.5,11"},
        {"checkStep", "M 2,8.5 L 6,12.5 L 14,3.5"},
        {"runChecks", "M 4,2.5 L 13,8 L 4,13.5 L 4,2.5"},
        {"stop", "B 3.5,3.5,9,9"},
        {"eraseResults", "M 2,10 L 9,3 L 14,8 L 9,13 L 5,13 L 2,10 M 5.5,6.5 L 10.5,11.5"},
        {"allResults", "M 6,4 L 14,4 M 6,8 L 14,8 M 6,12 L 14,12 D 2.8,4,1 D 2.8,8,1 D 2.8,12,1"},
        {"violationsOnly", "M 8,2 L 15,14 L 1,14 L 8,2 M 8,6.5 L 8,10 D 8,12,0.8"},
        {"topCopper", "R 2,2,12,12 M 4,11 L 7,11 L 10,6 L 12,6 D 4.4,4.8,1.4"},
        {"bottomCopper", "R 2,2,12,12 M 4,5 L 7,5 L 10,10 L 12,10 D 4.4,11.2,1.4"},
        {"topMask", "R 2,2,12,12 D 5.4,5.4,1.8 D 10.6,5.4,1.8 D 5.4,10.6,1.8 D 10.6,10.6,1.8"},
        {"bottomMask", "R 2,2,12,12 C 5.4,5.4,1.8 C 10.6,5.4,1.8 C 5.4,10.6,1.8 C 10.6,10.6,1.8"},
        {"negative", "R 2,2,12,12 B 2,2,6,12"},
        {"sendToImager", "M 2,8 L 14,2.5 L 10,14 L 7.5,9.5 L 2,8 M 7.5,9.5 L 14,2.5"},
        {"reloadDfmPlugins", "M 13.5,8 L 12.6,11 L 10,13 L 6.6,13.2 L 3.7,11.3 L 2.5,8 L 3.4,5 L 6,3 L "
                             "9.4,2.8 L 12.3,4.7 M 12.6,1.6 L 12.4,5 L 9,5.2"},
        {"reloadDesktopTools", "M 13.5,8 L 12.6,11 L 10,13 L 6.6,13.2 L 3.7,11.3 L 2.5,8 L 3.4,5 L 6,3 L "
                               "9.4,2.8 L 12.3,4.7 M 12.6,1.6 L 12.4,5 L 9,5.2"},
        {"add", "M 8,2.5 L 8,13.5 M 2.5,8 L 13.5,8"},
        {"duplicate", "R 2,2,8,8 R 6,6,8,8"},
        {"all", "M 2,5 L 2,2 L 5,2 M 7,2 L 9,2 M 11,2 L 14,2 L 14,5 M 14,7 L 14,9 M 14,11 L 14,14 L 11,14 M "
                "9,14 L 7,14 M 5,14 L 2,14 L 2,11 M 2,9 L 2,7 B 5,5,6,6"},
        {"none", "M 2,5 L 2,2 L 5,2 M 7,2 L 9,2 M 11,2 L 14,2 L 14,5 M 14,7 L 14,9 M 14,11 L 14,14 L 11,14 M "
                 "9,14 L 7,14 M 5,14 L 2,14 L 2,11 M 2,9 L 2,7"},
        {"next", "C 4.5,8,2.6 M 9,8 L 14,8 M 11.5,5.5 L 14,8 L 11.5,10.5"},
        {"invert", "C 8,8,6 M 8,2 L 8,14 M 10,3 L 10,13 M 12,4.5 L 12,11.5"},
        // These are the host's.
        {"jobs", "R 2,2,12,12 M 5,2 L 5,6 L 9,10 L 9,14 D 11,5,1.3 D 5,11,1.3"},
        {"points", "C 8,8,5.5 C 8,8,2 M 8,0.8 L 8,4 M 8,12 L 8,15.2 M 0.8,8 L 4,8 M 12,8 L 15.2,8"},
        {"plugins", "R 2,6,8,8 M 6,6 L 6,3 L 14,3 L 14,11 L 10,11 D 6,10,1.6"},
        {"startUp", "M 2,14 L 2,2 M 2,4 L 9,4 M 2,8 L 14,8 M 2,12 L 6,12"},
        {"messages",
         "M 2,3 L 14,3 L 14,11 L 8,11 L 4.5,14 L 4.5,11 L 2,11 L 2,3 M 5,5.8 L 11,5.8 M 5,8.2 L 9,8.2"},
        {"pause", "B 4,3,2.6,10 B 9.4,3,2.6,10"},
        {"copy", "R 2,2,8,9 R 6,5,8,9"},
        {"clear", "M 3,3 L 13,13 M 13,3 L 3,13"},
    };
    return drawings;
}

struct Drawing
{
    QPainterPath lines;
    QPainterPath areas;
};

void addStroke(Drawing &drawing, const QChar sort, const QStringList &numbers)
{
    const auto number = [&numbers](int index) { return numbers.value(index).toDouble(); };
    const QPointF at(number(0), number(1));
    if (sort == QLatin1Char('M'))
        drawing.lines.moveTo(at);
    else if (sort == QLatin1Char('L'))
        drawing.lines.lineTo(at);
    else if (sort == QLatin1Char('C'))
        drawing.lines.addEllipse(at, number(2), number(2));
    else if (sort == QLatin1Char('D'))
        drawing.areas.addEllipse(at, number(2), number(2));
    else if (sort == QLatin1Char('R'))
        drawing.lines.addRect({at, QSizeF(number(2), number(3))});
    else
        drawing.areas.addRect({at, QSizeF(number(2), number(3))});
}

Drawing readDrawing(const QString &text)
{
    Drawing drawing;
    const QStringList words = text.split(QLatin1Char(' '));
    for (int i = 1; i < words.size(); i += 2)
        addStroke(drawing, words.at(i - 1).at(0), words.at(i).split(QLatin1Char(',')));
    return drawing;
}

/// Paints when it is asked to, so that neither the size nor the colours of a theme are fixed.
class GlyphEngine : public QIconEngine
{
public:
    explicit GlyphEngine(Drawing drawing);

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine *clone() const override { return new GlyphEngine(m_drawing); }

private:
    const Drawing m_drawing;
};

GlyphEngine::GlyphEngine(Drawing drawing)
    : m_drawing(std::move(drawing))
{
}

void GlyphEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State)
{
    const QPalette palette = QGuiApplication::palette();
    const QColor color = mode == QIcon::Selected
                             ? palette.color(QPalette::HighlightedText)
                             : palette.color(mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active,
                                             QPalette::WindowText);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / gridSize, rect.height() / gridSize);
    painter->setPen(QPen(color, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(m_drawing.lines);
    painter->fillPath(m_drawing.areas, color);
    painter->restore();
}

QPixmap GlyphEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect({0, 0}, size), mode, state);
    return pixmap;
}

}

QIcon glyphIcon(const QString &command)
{
    const QString text = drawings().value(command);
    return text.isEmpty() ? QIcon() : QIcon(new GlyphEngine(readDrawing(text)));
}
