#include "messages.h"
#include "sampleJob.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>

/// What is known about one part number.
class PartDataView : public QScrollArea
{
public:
    explicit PartDataView(QWidget *parent);

    void showText(const QString &text);
    void showPart(const QString &number);

private:
    void showData(const Part &part);

    QLabel *const m_heading = new QLabel;
    QLabel *const m_customer = new QLabel;
    QLabel *const m_layers = new QLabel;
    QLabel *const m_thickness = new QLabel;
    QLabel *const m_finish = new QLabel;
};

PartDataView::PartDataView(QWidget *parent)
    : QScrollArea(parent)
{
    auto *const page = new QWidget;
    auto *const form = new QFormLayout(page);
    form->setContentsMargins(8, 6, 8, 6);
    form->setVerticalSpacing(4);
    form->addRow(m_heading);
    form->addRow(QStringLiteral("Customer"), m_customer);
    form->addRow(QStringLiteral("Layers"), m_layers);
    form->addRow(QStringLiteral("Thickness"), m_thickness);
    form->addRow(QStringLiteral("Finish"), m_finish);
    QFont bold = m_heading->font();
    bold.setBold(true);
    m_heading->setFont(bold);

    setWidget(page);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    showData(sampleParts().first());
}

void PartDataView::showText(const QString &text)
{
    m_heading->setText(text);
}

void PartDataView::showPart(const QString &number)
{
    if (const Part *const part = findPart(number))
        showData(*part);
}

void PartDataView::showData(const Part &part)
{
    m_heading->setText(QStringLiteral("%1, revision %2").arg(part.number, part.revision));
    m_customer->setText(part.customer);
    m_layers->setText(QString::number(part.layerCount));
    m_thickness->setText(QStringLiteral("%1 mm").arg(part.thickness, 0, 'f', 1));
    m_finish->setText(part.finish);
}

/// The view belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QScrollArea *>(new PartDataView(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const view = static_cast<PartDataView *>(static_cast<QScrollArea *>(element));
    if (message.type == MessageType::ShowText)
        view->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::SelectPart)
        view->showPart(textParameter(message, "Part"));
}
