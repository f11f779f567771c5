#include "board.h"
#include "messages.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableWidget>

namespace {

enum Column { NameColumn, KindColumn, TracksColumn, PadsColumn, DrillsColumn, FixedColumns };

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

    void openJob(const QString &file);
    void showText(const QString &text);
    void renameJob(const QString &newName);
    void showSteps(const QStringList &steps);
    void renameStep(const QString &oldName, const QString &newName);
    void showAnswer(const QString &step, const QString &layer, int features);
    void runCommand(const QString &command);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    void showHeadings();
    void addRow(const Layer &layer);
    void setCell(int row, int column, const QString &text);
    void moveRow(int distance);
    void showCounts(bool shown);
    void showAllLayers(bool visible);
    void save();
    void askViews();
    void tellViews(qint32 type, QMap<QString, QVariant> parameters);

    QString m_jobName;
    QStringList m_steps;
};

LayerMatrix::LayerMatrix(const QString &jobName, QWidget *parent)
    : QTableWidget(0, FixedColumns, parent)
    , m_jobName(jobName)
{
    // Texts need their room; counts share what is left.
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (int column = TracksColumn; column < FixedColumns; ++column)
        horizontalHeader()->setSectionResizeMode(column, QHeaderView::Stretch);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->hide();
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    showHeadings();
    connect(this, &QTableWidget::itemSelectionChanged, this, &LayerMatrix::askViews);
}

void LayerMatrix::openJob(const QString &file)
{
    setRowCount(0);
    const Job job = readJob(file);
    for (const Layer &layer : job.layers)
        addRow(layer);
}

void LayerMatrix::showText(const QString &text)
{
    horizontalHeaderItem(NameColumn)->setText(text);
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
            removeColumn(FixedColumns + i);
            m_steps.removeAt(i);
        }
    }
    for (const QString &step : steps) {
        if (!m_steps.contains(step))
            m_steps.append(step);
    }
    setColumnCount(FixedColumns + m_steps.size());
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
    const int column = FixedColumns + m_steps.indexOf(step);
    if (column < FixedColumns)
        return;
    for (int row = 0; row < rowCount(); ++row) {
        const bool shown = item(row, NameColumn)->text() == layer;
        setCell(row, column, shown ? tr("%1 shown").arg(features) : QString());
    }
}

void LayerMatrix::runCommand(const QString &command)
{
    if (command == QLatin1String("rowUp"))
        moveRow(-1);
    else if (command == QLatin1String("rowDown"))
        moveRow(1);
    else if (command == QLatin1String("showCounts"))
        showCounts(true);
    else if (command == QLatin1String("hideCounts"))
        showCounts(false);
    else if (command == QLatin1String("showAll"))
        showAllLayers(true);
    else if (command == QLatin1String("hideAll"))
        showAllLayers(false);
    else if (command == QLatin1String("saveMatrix"))
        save();
}

void LayerMatrix::showHeadings()
{
    setHorizontalHeaderLabels(QStringList{m_jobName, tr("Type"), tr("Tracks"), tr("Pads"), tr("Drills")}
                              + m_steps);
    for (int column = 0; column < columnCount(); ++column) {
        const Qt::Alignment alignment = column < TracksColumn ? Qt::AlignLeft : Qt::AlignRight;
        horizontalHeaderItem(column)->setTextAlignment(int(alignment | Qt::AlignVCenter));
    }
}

void LayerMatrix::addRow(const Layer &layer)
{
    const int row = rowCount();
    insertRow(row);

    const int size = fontMetrics().height() * 3 / 4;
    QPixmap swatch(size, size);
    swatch.fill(layer.color);
    setItem(row, NameColumn, new QTableWidgetItem(swatch, layer.name));
    setItem(row, KindColumn, new QTableWidgetItem(layerKindText(layer.kind)));
    setCell(row, TracksColumn, QString::number(layer.tracks.size()));
    setCell(row, PadsColumn, QString::number(layer.pads.size()));
    setCell(row, DrillsColumn, QString::number(layer.drills.size()));
}

void LayerMatrix::setCell(int row, int column, const QString &text)
{
    auto *const cell = new QTableWidgetItem(text);
    cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setItem(row, column, cell);
}

void LayerMatrix::moveRow(int distance)
{
    const int from = currentRow();
    const int to = from + distance;
    if (from < 0 || to < 0 || to >= rowCount())
        return;
    for (int column = 0; column < columnCount(); ++column) {
        QTableWidgetItem *const moved = takeItem(from, column);
        setItem(from, column, takeItem(to, column));
        setItem(to, column, moved);
    }
    selectRow(to);
}

void LayerMatrix::showCounts(bool shown)
{
    for (int column = TracksColumn; column <= DrillsColumn; ++column)
        setColumnHidden(column, !shown);
}

void LayerMatrix::showAllLayers(bool visible)
{
    for (int row = 0; row < rowCount(); ++row)
        tellViews(MessageType::ShowLayer, {{"Layer", item(row, NameColumn)->text()}, {"Visible", visible}});
}

void LayerMatrix::save()
{
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save matrix"), m_jobName + QLatin1String("-matrix.csv"), tr("Tables (*.csv)"));
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::WriteOnly))
        return;
    QTextStream out(&file);
    out.setCodec("UTF-8");
    for (int row = 0; row < rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < FixedColumns; ++column)
            cells.append(item(row, column)->text());
        out << cells.join(QLatin1Char(',')) << Qt::endl;
    }
}

/// The guide hears which layer was looked at.
void LayerMatrix::askViews()
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    const QString layer = item(rows.first().row(), NameColumn)->text();
    tellViews(MessageType::SelectLayer, {{"Layer", layer}});
    emit sendMsgToManager(
        makeMessage("Matrix.dll", "Graphic_CamGuide.dll", MessageType::TaskDone,
                    {{"DstType", "Guide"}, {"JobName", m_jobName}, {"Task", "layers"}, {"Text", layer}}));
}

/// The views live in other frames, so each message names the one that it is for.
void LayerMatrix::tellViews(qint32 type, QMap<QString, QVariant> parameters)
{
    parameters.insert("DstType", "Graphic");
    parameters.insert("JobName", m_jobName);
    for (const QString &step : qAsConst(m_steps)) {
        parameters.insert("Step", step);
        emit sendMsgToManager(makeMessage("Matrix.dll", "Graphic_View.dll", type, parameters));
    }
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
    else if (message.type == MessageType::RunCommand)
        matrix->runCommand(textParameter(message, "Command"));
    else if (message.type == MessageType::OpenStep)
        matrix->openJob(textParameter(message, "File"));
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
