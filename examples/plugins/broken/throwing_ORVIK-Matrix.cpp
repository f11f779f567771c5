#include "messages.h"

#include <QtWidgets/QMainWindow>

#include <stdexcept>

/// Makes its frame as it should, but throws at every message, also at the one by which it is to close.
extern "C" Q_DECL_EXPORT void *GetORVIKMatrixInstance(QWidget *parent)
{
    auto *const frame = new QMainWindow(parent);
    frame->setWindowFlags(Qt::Widget);
    return static_cast<QWidget *>(frame);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *, PluginMetaData)
{
    throw std::runtime_error("the matrix is singular");
}
