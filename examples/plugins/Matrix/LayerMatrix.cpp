#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableWidget>

namespace {

constexpr char ownName[] = "Matrix.dll";
constexpr int fixedColumns = 5;

}

/**
 * The layers of a job, one row each, with what they hold, and a column for each open step.
 *
 * Selecting a layer asks the views of all these steps to show it; what they answer stands in their columns.
 */
class LayerMatrix : public QTableWidget
{
    Q_OBJECT

public:
    LayerMatrix(const QString &jobName, QWidget *parent);

    void showText(const QString &text);
    void renameJob(const QString &newName);
    void showSteps(const QStringList &steps);
    void renameStep(const QString &oldName, const QString &newName);
    void showAnswer(const QString &step, const QString &layer, int features);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void showHeadings();
    void addRow(const Layer &layer);
    void askViews();

    QString m_jobName;
    QStringList m_steps;
};

LayerMatrix::LayerMatrix(const QString &jobName, QWidget *parent)
    : QTableWidget(0, fixedColumns, parent)
    , m_jobName(jobName)
{
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    showHeadings();

    const Job job = readJob(jobName);
    for (const Layer &layer : job.layers)
        addRow(layer);
    connect(this, &QTableWidget::itemSelectionChanged, this, &LayerMatrix::askViews);
}

void LayerMatrix::showText(const QString &text)
{
    horizontalHeaderItem(0)->setText(text);
}

void LayerMatrix::renameJob(const QString &newName)
{
    m_jobName = newName;
    showText(newName);
}

/// The columns of steps that stay keep what is in them.
void LayerMatrix::showSteps(const QStringList &steps)
{
    for (int i = m_steps.size() - 1; i >= 0; --i) {
        if (!steps.contains(m_steps.at(i))) {
            removeColumn(fixedColumns + i);
            m_steps.removeAt(i);
        }
    }
    for (const QString &step : steps) {
        if (!m_steps.contains(step))
            m_steps.append(step);
    }
    setColumnCount(fixedColumns + m_steps.size());
    showHeadings();
}

void LayerMatrix::renameStep(const QString &oldName, const QString &newName)
{
    const int index = m_steps.indexOf(oldName);
    if (index >= 0)
        m_steps[index] = newName;
    showHeadings();
}

void LayerMatrix::showAnswer(const QString &step, const QString &layer, int features)
{
    const int column = fixedColumns + m_steps.indexOf(step);
    if (column < fixedColumns)
        return;
    for (int row = 0; row < rowCount(); ++row) {
        const bool shown = item(row, 0)->text() == layer;
        auto *const answer =
            new QTableWidgetItem(shown ? QStringLiteral("%1 shown").arg(features) : QString());
        answer->setTextAlignment(Qt::AlignCenter);
        setItem(row, column, answer);
    }
}

void LayerMatrix::showHeadings()
{
    setHorizontalHeaderLabels(QStringList{m_jobName, QStringLiteral("Type"), QStringLiteral("Tracks"),
                                          QStringLiteral("Pads"), QStringLiteral("Drills")}
                              + m_steps);
}

void LayerMatrix::addRow(const Layer &layer)
{
    const int row = rowCount();
    insertRow(row);

    QPixmap swatch(12, 12);
    swatch.fill(layer.color);
    setItem(row, 0, new QTableWidgetItem(QIcon(swatch), layer.name));
    setItem(row, 1, new QTableWidgetItem(layer.kind));
    int column = 2;
    for (const int count : {layer.tracks.size(), layer.pads.size(), layer.drills.size()}) {
        auto *const item = new QTableWidgetItem(QString::number(count));
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        setItem(row, column++, item);
    }
}

/// The views live in other frames, so each message names the one that it is for.
void LayerMatrix::askViews()
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    const QString layer = item(rows.first().row(), 0)->text();
    for (const QString &step : qAsConst(m_steps))
        emit sendMsgToManager(
            makeMessage(ownName, "Graphic_View.dll", MessageType::SelectLayer,
                        {{"DstType", "Graphic"}, {"JobName", m_jobName}, {"Step", step}, {"Layer", layer}}));
    emit sendMsgToManager(makeMessage(
        ownName, "Graphic_CamGuide.dll", MessageType::TaskDone,
        {{"DstType", "Guide"}, {"JobName", m_jobName}, {"Task", "Look at the layers"}, {"Text", layer}}));
}

/// The table of the job named by the text. It belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetMatrixInstance(QWidget *parent, const QString &text)
{
    return static_cast<QWidget *>(new LayerMatrix(text, parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const matrix = static_cast<LayerMatrix *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        matrix->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::MatrixJobRenamed)
        matrix->renameJob(textParameter(message, "NewJobName"));
    else if (message.type == MessageType::ShowSteps)
        matrix->showSteps(parameter(message, "Steps").toStringList());
    else if (message.type == MessageType::RenameStep)
        matrix->renameStep(textParameter(message, "OldStepName"), textParameter(message, "ChangeStepName"));
    else if (message.type == MessageType::LayerShown)
        matrix->showAnswer(textParameter(message, "Step"), textParameter(message, "Layer"),
                           parameter(message, "Features").toInt());
}

#include "LayerMatrix.moc"
