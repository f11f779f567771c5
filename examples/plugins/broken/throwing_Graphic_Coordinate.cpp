#include "messages.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <stdexcept>

/// Makes its element as it should, but throws at every message.
extern "C" Q_DECL_EXPORT void *GetGraphic_CoordinateInstance(QWidget *)
{
    auto *const row = new QHBoxLayout;
    row->addWidget(new QLabel(QCoreApplication::translate("CoordinateRow", "No coordinates")));
    return row;
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *, PluginMetaData)
{
    throw std::runtime_error("the table of units is empty");
}
