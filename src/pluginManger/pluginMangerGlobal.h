#pragma once

#include <QtCore/QtGlobal>

/// Exports the library's classes where it is built and imports them where it is used.
#ifdef PLUGINMANGER_LIBRARY
#    define PLUGINMANGER_EXPORT Q_DECL_EXPORT
#else
#    define PLUGINMANGER_EXPORT Q_DECL_IMPORT
#endif
