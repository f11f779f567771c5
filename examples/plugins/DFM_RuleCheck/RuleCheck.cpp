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
    for (const Drill &drill : layerOf(job, QStringLiteral("drill"))->drills)
        rule.add(drill.diameter);
    return rule;
}

Rule checkAnnularRing(const Job &job)
{
    Rule rule{QStringLiteral("Annular ring"), 0.125};
    for (const Drill &drill : layerOf(job, QStringLiteral("drill"))->drills) {
        if (!drill.plated)
            continue;
        for (const Pad &pad : layerOf(job, QStringLiteral("top"))->pads) {
            if (pad.center == drill.center)
                rule.add((std::min(pad.size.width(), pad.size.height()) - drill.diameter) / 2);
        }
    }
    return rule;
}

Rule checkDrillToEdge(const Job &job)
{
    Rule rule{QStringLiteral("Drill to edge"), 0.5};
    for (const Drill &drill : layerOf(job, QStringLiteral("drill"))->drills) {
        const QPointF lower = drill.center - job.board.topLeft();
        const QPointF upper = job.board.bottomRight() - drill.center;
        rule.add(std::min({lower.x(), lower.y(), upper.x(), upper.y()}) - drill.diameter / 2);
    }
    return rule;
}

QVector<Rule> checkRules(const Job &job)
{
    return {checkTrackWidth(job), checkDrillDiameter(job), checkAnnularRing(job), checkDrillToEdge(job)};
}

}

/// The rules, with a summary above them. They are checked by command, and the job's guide hears the result.
class RuleCheck : public QWidget
{
    Q_OBJECT

public:
    explicit RuleCheck(QWidget *parent);

    void openJob(const QString &name);
    void renameJob(const QString &oldName, const QString &newName);
    void runCommand(const QString &command);
    void showText(const QString &text) { m_summary->setText(text); }

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void runChecks();
    void eraseResults();
    void addRow(const Rule &rule, bool checked);

    QLabel *const m_summary = new QLabel;
    QTreeWidget *const m_rules = new QTreeWidget;
    QString m_jobName;
    Job m_job;
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
    column->setContentsMargins(4, 2, 4, 2);
    column->addWidget(m_summary);
    column->addWidget(m_rules);
}

void RuleCheck::openJob(const QString &name)
{
    m_jobName = name;
    m_job = readJob(name);
    eraseResults();
}

void RuleCheck::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
}

void RuleCheck::runCommand(const QString &command)
{
    if (command == QLatin1String("runChecks"))
        runChecks();
    else if (command == QLatin1String("eraseResults"))
        eraseResults();
}

void RuleCheck::runChecks()
{
    m_rules->clear();
    int violations = 0;
    for (const Rule &rule : checkRules(m_job)) {
        addRow(rule, true);
        violations += rule.isKept() ? 0 : 1;
    }
    showText(QStringLiteral("%1 of %2 rules violated").arg(violations).arg(m_rules->topLevelItemCount()));
    emit sendMsgToManager(makeMessage("DFM_RuleCheck.dll", "Graphic_CamGuide.dll", MessageType::TaskDone,
                                      {{"DstType", "Guide"},
                                       {"JobName", m_jobName},
                                       {"Task", "Check the rules"},
                                       {"Text", QStringLiteral("%1 violated").arg(violations)}}));
}

void RuleCheck::eraseResults()
{
    m_rules->clear();
    for (const Rule &rule : checkRules(m_job))
        addRow(rule, false);
    showText(QStringLiteral("Rules not checked"));
}

void RuleCheck::addRow(const Rule &rule, bool checked)
{
    auto *const row = new QTreeWidgetItem(m_rules, {rule.name, QString::number(rule.allowed, 'f', 3)});
    if (!checked)
        return;
    // A board without the feature keeps every rule about it.
    const bool measured = rule.found < std::numeric_limits<double>::max();
    row->setText(2, measured ? QString::number(rule.found, 'f', 3) : QStringLiteral("none"));
    if (!rule.isKept())
        row->setForeground(2, QColor(190, 40, 30));
}

/// The panel belongs to its parent. Hosts know it as a QObject.
extern "C" Q_DECL_EXPORT void *GetPluginDFMInstance(QWidget *parent)
{
    return static_cast<QObject *>(new RuleCheck(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const check = static_cast<RuleCheck *>(static_cast<QObject *>(element));
    if (message.type == MessageType::ShowText)
        check->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::RunCommand)
        check->runCommand(textParameter(message, "Command"));
    else if (message.type == MessageType::OpenStep)
        check->openJob(textParameter(message, "JobName"));
    else if (message.type == MessageType::JobRenamed)
        check->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
}

#include "RuleCheck.moc"
