#include "messages.h"
#include "sampleJob.h"

#include <QtCore/QLineF>
#include <QtCore/QMap>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTreeWidget>

namespace {

double lengthOf(const Track &track)
{
    double length = 0;
    for (int i = 1; i < track.points.size(); ++i)
        length += QLineF(track.points.at(i - 1), track.points.at(i)).length();
    return length;
}

QTreeWidget *makeTable(const QStringList &headings)
{
    auto *const table = new QTreeWidget;
    table->setRootIsDecorated(false);
    table->setHeaderLabels(headings);
    table->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return table;
}

/// The total length of the tracks of each width, layer by layer.
QTreeWidget *makeTrackTable(const Job &job)
{
    QTreeWidget *const table =
        makeTable({QStringLiteral("Layer"), QStringLiteral("Width"), QStringLiteral("Length")});
    for (const Layer &layer : job.layers) {
        if (layer.kind != QLatin1String("Signal"))
            continue;
        QMap<double, double> lengths;
        for (const Track &track : layer.tracks)
            lengths[track.width] += lengthOf(track);
        for (auto length = lengths.constBegin(); length != lengths.constEnd(); ++length)
            new QTreeWidgetItem(table, {layer.name, QStringLiteral("%1 mm").arg(length.key(), 0, 'f', 2),
                                        QStringLiteral("%1 mm").arg(length.value(), 0, 'f', 1)});
    }
    return table;
}

/// How many holes there are of each size and sort.
QTreeWidget *makeDrillTable(const Job &job)
{
    QTreeWidget *const table =
        makeTable({QStringLiteral("Diameter"), QStringLiteral("Plated"), QStringLiteral("Holes")});
    QMap<QPair<double, bool>, int> counts;
    for (const Drill &drill : layerOf(job, QStringLiteral("drill")).drills)
        ++counts[{drill.diameter, drill.plated}];
    for (auto count = counts.constBegin(); count != counts.constEnd(); ++count)
        new QTreeWidgetItem(table, {QStringLiteral("%1 mm").arg(count.key().first, 0, 'f', 2),
                                    count.key().second ? QStringLiteral("yes") : QStringLiteral("no"),
                                    QString::number(count.value())});
    return table;
}

}

/// The dock belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginDFMInstance(QWidget *parent)
{
    auto *const tabs = new QTabWidget;
    tabs->addTab(makeTrackTable(sampleJob()), QStringLiteral("Tracks"));
    tabs->addTab(makeDrillTable(sampleJob()), QStringLiteral("Drills"));

    auto *const dock = new QDockWidget(QStringLiteral("DFM analysis"), parent);
    dock->setObjectName(QStringLiteral("DFM_Graphic_AnalysisTab"));
    dock->setWidget(tabs);
    return dock;
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        static_cast<QDockWidget *>(element)->setWindowTitle(parameter(message, "Text").toString());
}
