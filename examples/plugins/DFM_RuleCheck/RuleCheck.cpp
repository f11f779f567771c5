#include "Rules.h"
#include "messages.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

/**
 * The rules and what breaks them, with a summary above. They are checked by command, a slice at a time, so
 * that everybody can go on working; the window's progress display, the job's guide and the view of the step
 * hear about it. A click on a finding brings the view there.
 */
class RuleCheck : public QWidget
{
    Q_OBJECT

public:
    explicit RuleCheck(QWidget *parent);

    void openStep(const QString &jobName, const QString &stepName, const QString &file);
    void renameJob(const QString &oldName, const QString &newName);
    void renameStep(const QString &oldName, const QString &newName);
    void runCommand(const QString &command);
    void showText(const QString &text) { m_summary->setText(text); }

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void runChecks();
    void runSlice();
    void finish();
    void stop();
    void eraseResults();
    void showOnlyViolations(bool only);
    void exportReport();
    void addRules(const QVector<Finding> &findings);
    void goTo(const QTreeWidgetItem *item);
    void tellProgress(int percent, const QString &text);
    void tellView(qint32 type, QMap<QString, QVariant> parameters);

    QLabel *const m_summary = new QLabel;
    QTreeWidget *const m_rules = new QTreeWidget;
    QTimer *const m_timer = new QTimer(this);
    QString m_jobName;
    QString m_stepName;
    Job m_job;
    std::unique_ptr<RuleRun> m_run;
    int m_toldPercent = -1;
};

RuleCheck::RuleCheck(QWidget *parent)
    : QWidget(parent)
{
    m_summary->setWordWrap(true);
    m_rules->setHeaderLabels({tr("Rule, in mm"), tr("Found"), tr("Least")});
    m_rules->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_rules->header()->setStretchLastSection(false);
    m_rules->setTextElideMode(Qt::ElideNone);
    m_rules->setIndentation(8);
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &RuleCheck::runSlice);
    connect(m_rules, &QTreeWidget::currentItemChanged, this, &RuleCheck::goTo);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 2, 4, 2);
    column->addWidget(m_summary);
    column->addWidget(m_rules);
    eraseResults();
}

void RuleCheck::openStep(const QString &jobName, const QString &stepName, const QString &file)
{
    stop();
    m_jobName = jobName;
    m_stepName = stepName;
    m_job = readJob(file);
    eraseResults();
}

void RuleCheck::renameJob(const QString &oldName, const QString &newName)
{
    if (m_jobName == oldName)
        m_jobName = newName;
}

void RuleCheck::renameStep(const QString &oldName, const QString &newName)
{
    if (m_stepName == oldName)
        m_stepName = newName;
}

void RuleCheck::runCommand(const QString &command)
{
    if (command == QLatin1String("runChecks"))
        runChecks();
    else if (command == QLatin1String("stop"))
        stop();
    else if (command == QLatin1String("eraseResults"))
        eraseResults();
    else if (command == QLatin1String("allResults"))
        showOnlyViolations(false);
    else if (command == QLatin1String("violationsOnly"))
        showOnlyViolations(true);
    else if (command == QLatin1String("exportReport"))
        exportReport();
}

void RuleCheck::runChecks()
{
    eraseResults();
    m_run = std::make_unique<RuleRun>(m_job);
    m_toldPercent = 0;
    showText(tr("Checking %1 features").arg(m_job.featureCount()));
    m_timer->start();
}

/// Ends after some time, or when there is progress to tell.
void RuleCheck::runSlice()
{
    constexpr int sliceInMilliseconds = 8;
    QElapsedTimer elapsed;
    elapsed.start();
    bool more = true;
    while (more && !elapsed.hasExpired(sliceInMilliseconds) && m_run->percent() == m_toldPercent)
        more = m_run->advance();
    if (m_run->percent() != m_toldPercent) {
        m_toldPercent = m_run->percent();
        tellProgress(m_toldPercent, tr("Checking %1").arg(m_jobName));
    }
    if (!more)
        finish();
}

void RuleCheck::finish()
{
    m_timer->stop();
    const QVector<Finding> findings = m_run->findings();
    m_run.reset();
    addRules(findings);
    const QString result =
        findings.isEmpty() ? tr("No violations") : tr("Violations: %1").arg(findings.size());
    showText(result);
    tellProgress(100, tr("%1 checked").arg(m_jobName));
    emit sendMsgToManager(makeMessage("DFM_RuleCheck.dll", "Graphic_CamGuide.dll", MessageType::TaskDone,
                                      {{"DstType", "Guide"},
                                       {"JobName", m_jobName},
                                       {"Task", "rules"},
                                       {"Text", tr("%1 found").arg(findings.size())}}));
    QVariantList positions;
    for (const Finding &finding : findings)
        positions.append(finding.position);
    tellView(MessageType::ShowFindings, {{"Findings", positions}});
}

void RuleCheck::stop()
{
    if (!m_run)
        return;
    m_timer->stop();
    m_run.reset();
    showText(tr("Stopped"));
    tellProgress(0, tr("Check of %1 stopped").arg(m_jobName));
}

void RuleCheck::eraseResults()
{
    stop();
    addRules({});
    for (int row = 0; row < m_rules->topLevelItemCount(); ++row)
        m_rules->topLevelItem(row)->setIcon(0, {});
    for (int row = 0; row < m_rules->topLevelItemCount(); ++row)
        m_rules->topLevelItem(row)->setText(1, {});
    showText(tr("Press F5 to check the rules"));
    if (!m_job.isEmpty())
        tellView(MessageType::ShowFindings, {{"Findings", QVariantList()}});
}

void RuleCheck::showOnlyViolations(bool only)
{
    for (int row = 0; row < m_rules->topLevelItemCount(); ++row)
        m_rules->topLevelItem(row)->setHidden(only && m_rules->topLevelItem(row)->childCount() == 0);
}

void RuleCheck::exportReport()
{
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Export report"), m_jobName + QLatin1String("-dfm.txt"), tr("Texts (*.txt)"));
    QFile report(file);
    if (file.isEmpty() || !report.open(QIODevice::WriteOnly))
        return;
    QTextStream out(&report);
    out.setCodec("UTF-8");
    for (int row = 0; row < m_rules->topLevelItemCount(); ++row) {
        const QTreeWidgetItem *const rule = m_rules->topLevelItem(row);
        out << rule->text(0) << ": " << rule->text(1) << Qt::endl;
        for (int child = 0; child < rule->childCount(); ++child) {
            const QTreeWidgetItem *const finding = rule->child(child);
            out << "  " << finding->text(0) << ": " << finding->text(1) << Qt::endl;
        }
    }
    showText(tr("Report exported"));
}

void RuleCheck::addRules(const QVector<Finding> &findings)
{
    m_rules->clear();
    const QIcon good = style()->standardIcon(QStyle::SP_DialogApplyButton);
    const QIcon bad = style()->standardIcon(QStyle::SP_MessageBoxWarning);
    const QStringList names = RuleRun::ruleNames();
    for (const QString &name : names) {
        auto *const rule = new QTreeWidgetItem(m_rules, {name});
        for (const Finding &finding : findings) {
            if (finding.rule != name)
                continue;
            const QString place = tr("%1 at %2, %3")
                                      .arg(finding.layer)
                                      .arg(finding.position.x(), 0, 'f', 1)
                                      .arg(finding.position.y(), 0, 'f', 1);
            auto *const item = new QTreeWidgetItem(rule, {place, QString::number(finding.found, 'f', 3),
                                                          QString::number(finding.allowed, 'f', 3)});
            item->setData(0, Qt::UserRole, finding.position);
        }
        rule->setIcon(0, rule->childCount() ? bad : good);
        rule->setText(1, rule->childCount() ? QString::number(rule->childCount()) : tr("kept"));
        rule->setExpanded(rule->childCount() < 10);
    }
}

void RuleCheck::goTo(const QTreeWidgetItem *item)
{
    const QVariant position = item ? item->data(0, Qt::UserRole) : QVariant();
    if (position.isValid())
        tellView(MessageType::CenterOn, {{"Position", position}, {"Width", 6.0}});
}

/// The display belongs to the window, not to the job.
void RuleCheck::tellProgress(int percent, const QString &text)
{
    emit sendMsgToManager(makeMessage("DFM_RuleCheck.dll", "CAM_Progress_Dialog.dll",
                                      MessageType::ShowProgress,
                                      {{"DstType", "EngineerRoot"}, {"Percent", percent}, {"Text", text}}));
}

/// The view lives in another frame, so the message says in which.
void RuleCheck::tellView(qint32 type, QMap<QString, QVariant> parameters)
{
    parameters.insert("DstType", "Graphic");
    parameters.insert("JobName", m_jobName);
    parameters.insert("Step", m_stepName);
    emit sendMsgToManager(makeMessage("DFM_RuleCheck.dll", "Graphic_View.dll", type, parameters));
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
        check->openStep(textParameter(message, "JobName"), textParameter(message, "Step"),
                        textParameter(message, "File"));
    else if (message.type == MessageType::JobRenamed)
        check->renameJob(textParameter(message, "OldJobName"), textParameter(message, "NewJobName"));
    else if (message.type == MessageType::RenameStep)
        check->renameStep(textParameter(message, "OldStepName"), textParameter(message, "ChangeStepName"));
}

#include "RuleCheck.moc"
