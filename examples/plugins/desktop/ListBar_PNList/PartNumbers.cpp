#include "DesktopPlugin.h"
#include "sampleJob.h"

#include <PNListInterface.h>

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeWidget>

/// The list of part numbers. Whoever works on a part is told which one is selected.
class PartNumbers : public DesktopPlugin, public PNListInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(PNListInterface)

public:
    PartNumbers();

    QWidget *createList() override;

private:
    void tellPart(const QString &number);
};

PartNumbers::PartNumbers()
    : DesktopPlugin("ListBar_PNList")
{
}

QWidget *PartNumbers::createList()
{
    auto *const list = new QTreeWidget;
    list->setRootIsDecorated(false);
    list->setHeaderLabels({QStringLiteral("Part"), QStringLiteral("Rev"), QStringLiteral("Customer")});
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (const Part &part : sampleParts())
        new QTreeWidgetItem(list, {part.number, part.revision, part.customer});
    connect(list, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem *item) {
        if (item)
            tellPart(item->text(0));
    });
    return list;
}

void PartNumbers::tellPart(const QString &number)
{
    for (const char *const receiver : {"Viewbar_View", "Viewbar_Status", "File_Process", "Plating_Area"})
        send(receiver, MessageType::SelectPart, {{"Part", number}});
}

#include "PartNumbers.moc"
