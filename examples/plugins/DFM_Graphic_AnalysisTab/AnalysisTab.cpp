#include "board.h"
#include "messages.h"

#include <QtCore/QCoreApplication>
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

/// A dock with a table on each tab, about the job of the step that was opened.
class AnalysisTab : public QDockWidget
{
    Q_DECLARE_TR_FUNCTIONS(AnalysisTab)

public:
    explicit AnalysisTab(QWidget *parent);

    void openJob(const Job &job);

private:
    static QTreeWidget *makeTrackTable(const Job &job);
    static QTreeWidget *makeDrillTable(const Job &job);

    QTabWidget *const m_tabs = new QTabWidget;
};

AnalysisTab::AnalysisTab(QWidget *parent)
    : QDockWidget(tr("DFM analysis"), parent)
{
    setObjectName(QLatin1String("DFM_Graphic_AnalysisTab"));
    setFeatures(DockWidgetMovable);
    setWidget(m_tabs);
    m_tabs->setMinimumHeight(10 * fontMetrics().height());
}

void AnalysisTab::openJob(const Job &job)
{
    while (QWidget *const page = m_tabs->widget(0))
        delete page;
    m_tabs->addTab(makeTrackTable(job), tr("Tracks"));
    m_tabs->addTab(makeDrillTable(job), tr("Drills"));
}

/// The total length of the tracks of each width, layer by layer.
QTreeWidget *AnalysisTab::makeTrackTable(const Job &job)
{
    QTreeWidget *const table = makeTable({tr("Layer"), tr("Width"), tr("Length")});
    for (const Layer &layer : job.layers) {
        if (layer.kind != QLatin1String("signal"))
            continue;
        QMap<double, double> lengths;
        for (const Track &track : layer.tracks)
            lengths[track.width] += lengthOf(track);
        for (auto length = lengths.constBegin(); length != lengths.constEnd(); ++length)
            new QTreeWidgetItem(table, {layer.name, tr("%1 mm").arg(length.key(), 0, 'f', 2),
                                        tr("%1 mm").arg(length.value(), 0, 'f', 1)});
    }
    return table;
}

/// How many holes there are of each size and sort.
QTreeWidget *AnalysisTab::makeDrillTable(const Job &job)
{
    QTreeWidget *const table = makeTable({tr("Diameter"), tr("Plated"), tr("Holes")});
    QMap<QPair<double, bool>, int> counts;
    if (const Layer *const drills = job.layer(QLatin1String("drill"))) {
        for (const Drill &drill : drills->drills)
            ++counts[{drill.diameter, drill.plated}];
    }
    for (auto count = counts.constBegin(); count != counts.constEnd(); ++count)
        new QTreeWidgetItem(table,
                            {tr("%1 mm").arg(count.key().first, 0, 'f', 2),
                             count.key().second ? tr("yes") : tr("no"), QString::number(count.value())});
    return table;
}

}

/// The dock belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginDFMInstance(QWidget *parent)
{
    return static_cast<QDockWidget *>(new AnalysisTab(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const tab = static_cast<AnalysisTab *>(static_cast<QDockWidget *>(element));
    if (message.type == MessageType::ShowText)
        tab->setWindowTitle(textParameter(message, "Text"));
    else if (message.type == MessageType::OpenStep)
        tab->openJob(readJob(textParameter(message, "File")));
}
