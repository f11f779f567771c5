#include "messages.h"

#include <QtCore/QPointF>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <algorithm>

/// A row that shows a position on the board in a unit that the user chooses.
class CoordinateRow : public QHBoxLayout
{
    Q_OBJECT
    Q_PROPERTY(QString position READ position)

public:
    CoordinateRow();

    QString position() const { return m_position->text(); }
    void showText(const QString &text);
    void showPosition(QPointF position);
    void useUnit(const QString &unit);

private:
    void addUnit(const QString &name, double millimetres);
    void update();

    QLabel *const m_position = new QLabel;
    QLabel *const m_text = new QLabel;
    QComboBox *const m_unit = new QComboBox;
    QPointF m_millimetres;
};

CoordinateRow::CoordinateRow()
{
    addUnit(QLatin1String("mm"), 1);
    addUnit(QLatin1String("inch"), 25.4);
    addUnit(QLatin1String("mil"), 0.0254);

    addWidget(m_position);
    addWidget(m_unit);
    addWidget(m_text, 1);
    m_unit->setToolTip(tr("Unit of the coordinates"));
    m_position->setMinimumWidth(
        m_position->fontMetrics().horizontalAdvance(QLatin1String("X -0000.000   Y -0000.000")));
    connect(m_unit, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CoordinateRow::update);
    update();
}

void CoordinateRow::showText(const QString &text)
{
    m_text->setText(text);
}

void CoordinateRow::showPosition(QPointF position)
{
    m_millimetres = position;
    update();
}

void CoordinateRow::useUnit(const QString &unit)
{
    m_unit->setCurrentIndex(std::max(0, m_unit->findText(unit)));
}

void CoordinateRow::addUnit(const QString &name, double millimetres)
{
    m_unit->addItem(name, millimetres);
}

void CoordinateRow::update()
{
    const QPointF position = m_millimetres / m_unit->currentData().toDouble();
    m_position->setText(tr("X %1   Y %2").arg(position.x(), 8, 'f', 3).arg(position.y(), 8, 'f', 3));
}

/// The layout has no parent yet: it belongs to the layout that the host adds it to, as its widgets then
/// belong to the widget of that layout.
extern "C" Q_DECL_EXPORT void *GetGraphic_CoordinateInstance(QWidget *)
{
    return static_cast<QHBoxLayout *>(new CoordinateRow);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const row = static_cast<CoordinateRow *>(static_cast<QHBoxLayout *>(element));
    if (message.type == MessageType::ShowText)
        row->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::FollowView)
        row->showPosition(parameter(message, "Position").toPointF());
    else if (message.type == MessageType::UseUnit)
        row->useUnit(textParameter(message, "Unit"));
}

#include "CoordinateRow.moc"
