#include "messages.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

/// A filter for part numbers, with a line of information below it.
class FilterBar : public QVBoxLayout
{
    Q_OBJECT

public:
    FilterBar();

    void showText(const QString &text) { m_info->setText(text); }
    void showCount(int count, int total);

signals:
    void sendMsgToManager(const PluginMetaData &message);

private:
    QLabel *const m_info = new QLabel;
};

FilterBar::FilterBar()
{
    auto *const filter = new QLineEdit;
    filter->setPlaceholderText(tr("Filter parts and jobs"));
    filter->setClearButtonEnabled(true);
    addWidget(filter);
    addWidget(m_info);
    showCount(0, 0);
    connect(filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        emit sendMsgToManager(makeMessage("CAM_FilterAndInfo_Bar.dll", "ListBar_PNList.dll",
                                          MessageType::FilterParts, {{"Filter", text}}));
    });
}

void FilterBar::showCount(int count, int total)
{
    showText(tr("%1 of %2 part numbers").arg(count).arg(total));
}

/// The layout has no parent yet: it belongs to the layout that the host adds it to, as its widgets then
/// belong to the widget of that layout.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *)
{
    return static_cast<QVBoxLayout *>(new FilterBar);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const bar = static_cast<FilterBar *>(static_cast<QVBoxLayout *>(element));
    if (message.type == MessageType::ShowText)
        bar->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::PartsListed)
        bar->showCount(parameter(message, "Count").toInt(), parameter(message, "Total").toInt());
}

#include "FilterBar.moc"
