#include "messages.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

namespace {

/// One line of advice after the other.
class Tips : public QLabel
{
    Q_DECLARE_TR_FUNCTIONS(Tips)

public:
    explicit Tips(QWidget *parent);

private:
    void showNext();

    const QStringList m_tips{
        tr("Tip: turn the wheel over the board to zoom, drag it to move, click a feature to see its size."),
        tr("Tip: choose a row of the matrix to see that layer in all steps."),
        tr("Tip: click the small map to go to that place on the board."),
        tr("Tip: press F5 to check the rules, then choose a finding to see where it is."),
    };
    int m_next = 0;
};

Tips::Tips(QWidget *parent)
    : QLabel(parent)
{
    // However long a tip is, it does not widen the window.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &Tips::showNext);
    timer->start(8000);
    showNext();
}

void Tips::showNext()
{
    setText(m_tips.at(m_next));
    m_next = (m_next + 1) % m_tips.size();
}

}

/// The line belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetGraphic_TipsInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new Tips(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        static_cast<Tips *>(static_cast<QWidget *>(element))->setText(textParameter(message, "Text"));
}
