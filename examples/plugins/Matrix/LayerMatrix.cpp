#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableWidget>

#include <utility>

/// The layers of a job, one row each, with what they hold.
class LayerMatrix : public QTableWidget
{
    Q_OBJECT

public:
    LayerMatrix(const QString &jobName, QWidget *parent);

    void showText(const QString &text);
    void selectLayer(const QString &name);

signals:
    void layerSelected(const QString &name);

private:
    void addRow(const Layer &layer);
};

LayerMatrix::LayerMatrix(const QString &jobName, QWidget *parent)
    : QTableWidget(0, 5, parent)
{
    setHorizontalHeaderLabels({jobName, QStringLiteral("Type"), QStringLiteral("Tracks"),
                               QStringLiteral("Pads"), QStringLiteral("Drills")});
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);

    // Only the sample job has layers to show; another job's matrix stays empty.
    if (jobName == sampleJob().name) {
        for (const Layer &layer : sampleJob().layers)
            addRow(layer);
    }
    connect(this, &QTableWidget::itemSelectionChanged, this, [this] {
        const QList<QTableWidgetItem *> selection = selectedItems();
        emit layerSelected(selection.isEmpty() ? QString() : selection.first()->text());
    });
}

void LayerMatrix::showText(const QString &text)
{
    horizontalHeaderItem(0)->setText(text);
}

void LayerMatrix::selectLayer(const QString &name)
{
    clearSelection();
    const QList<QTableWidgetItem *> layers = findItems(name, Qt::MatchExactly);
    if (!layers.isEmpty())
        selectRow(layers.first()->row());
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

/// The table of the job named by the text. It belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetMatrixInstance(QWidget *parent, const QString &text)
{
    return static_cast<QWidget *>(new LayerMatrix(text, parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const matrix = static_cast<LayerMatrix *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        matrix->showText(parameter(message, "Text").toString());
    else if (message.type == MessageType::SelectLayer)
        matrix->selectLayer(parameter(message, "Layer").toString());
}

#include "LayerMatrix.moc"
