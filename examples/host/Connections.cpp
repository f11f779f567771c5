#include "Connections.h"

#include <QtCore/QObject>

std::vector<Connection> connections()
{
    // By name, since a host sees no more of an element than its Qt type.
    return {
        {"Graphic_View.dll", SIGNAL(cursorMoved(QPointF)), "Graphic_Coordinate.dll",
         SLOT(showPosition(QPointF))},
        {"Graphic_View.dll", SIGNAL(visibleAreaChanged(QRectF)), "Graphic_MiniMap.dll",
         SLOT(showVisibleArea(QRectF))},
        {"Graphic_MiniMap.dll", SIGNAL(centerRequested(QPointF)), "Graphic_View.dll",
         SLOT(centerOn(QPointF))},
        {"Matrix.dll", SIGNAL(layerSelected(QString)), "Graphic_View.dll", SLOT(highlightLayer(QString))},
        {"ListBar_PNList.dll", SIGNAL(partSelected(QString)), "CAM_PNData_View.dll", SLOT(showPart(QString))},
        {"CAM_FilterAndInfo_Bar.dll", SIGNAL(filterChanged(QString)), "ListBar_PNList.dll",
         SLOT(setFilter(QString))},
    };
}
