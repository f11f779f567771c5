#include <QtCore/QtGlobal>

/// What the file itself says that it is; hosts compare it with the version that their lists ask for.
extern "C" Q_DECL_EXPORT const char *pluginVersion()
{
    return PLUGIN_VERSION;
}
