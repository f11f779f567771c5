#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <limits>

namespace {

/// One rule: the least value that is allowed, and the least that the board has.
struct Rule
{
    QString name;
    double allowed;
    double found = std::numeric_limits<double>::max();

    void add(double value) { found = std::min(found, value); }
    bool isKept() const { return found >= allowed; }
};

Rule checkTrackWidth(const Job &job)
{
    Rule rule{QStringLiteral("Track width"), 0.15};
    for (const Layer &layer : job.layers) {
        if (layer.kind != QLatin1String("Signal"))
            continue;
        for (const Track &track : layer.tracks)
            rule.add(track.width);
    }
    return rule;
}

Rule checkDrillDiameter(const Job &job)
{
    Rule rule{QStringLiteral("Drill diameter"), 0.25};
    for (const Drill &drill : layerOf(job, QStringLiteral("drill")).drills)
        rule.add(drill.diameter);
    return rule;
}

Rule checkAnnularRing(const Job &job)
{
    Rule rule{QStringLiteral("Annular ring"), 0.125};
    for (const Drill &drill : layerOf(job, QStringLiteral("drill")).drills) {
        if (!drill.plated)
            continue;
        for (const Pad &pad : layerOf(job, QStringLiteral("top")).pads) {
            if (pad.center == drill.center)
                rule.add((std::min(pad.size.width(), pad.size.height()) - drill.diameter) / 2);
        }
    }
    return rule;
}

Rule checkDrillToEdge(const Job &job)
{
    Rule rule{QStringLiteral("Drill to edge"), 0.5};
    for (const Drill &drill : layerOf(job, QStringLiteral("drill")).drills) {
        const QPointF lower = drill.center - job.board.topLeft();
        const QPointF upper = job.board.bottomRight() - drill.center;
        rule.add(std::min({lower.x(), lower.y(), upper.x(), upper.y()}) - drill.diameter / 2);
    }
    return rule;
}

/// The rules, checked on the sample job, with a summary above them.
class RuleCheck : public QWidget
{
public:
    explicit RuleCheck(QWidget *parent);

    void showText(const QString &text) { m_summary->setText(text); }

private:
    void addRow(const Rule &rule);

    QLabel *const m_summary = new QLabel;
    QTreeWidget *const m_rules = new QTreeWidget;
};

RuleCheck::RuleCheck(QWidget *parent)
    : QWidget(parent)
{
    m_rules->setRootIsDecorated(false);
    m_rules->setHeaderLabels(
        {QStringLiteral("Rule, in mm"), QStringLiteral("Least"), QStringLiteral("Found")});
    m_rules->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_rules->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_summary);
    column->addWidget(m_rules);

    int violations = 0;
    for (const Rule &rule : {checkTrackWidth(sampleJob()), checkDrillDiameter(sampleJob()),
                             checkAnnularRing(sampleJob()), checkDrillToEdge(sampleJob())}) {
        addRow(rule);
        violations += rule.isKept() ? 0 : 1;
    }
    showText(QStringLiteral("Rule check: %1 of %2 rules violated")
                 .arg(violations)
                 .arg(m_rules->topLevelItemCount()));
}

void RuleCheck::addRow(const Rule &rule)
{
    auto *const row = new QTreeWidgetItem(
        m_rules, {rule.name, QString::number(rule.allowed, 'f', 3), QString::number(rule.found, 'f', 3)});
    if (!rule.isKept())
        row->setForeground(2, QColor(190, 40, 30));
}

}

/// The panel belongs to its parent. Hosts know it as a QObject.
extern "C" Q_DECL_EXPORT void *GetPluginDFMInstance(QWidget *parent)
{
    return static_cast<QObject *>(new RuleCheck(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        static_cast<RuleCheck *>(static_cast<QObject *>(element))
            ->showText(parameter(message, "Text").toString());
}
