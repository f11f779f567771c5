#include "DesktopPlugin.h"

#include <stdexcept>

/// Throws at every message.
class ThrowingPlatingArea : public DesktopPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")

public:
    ThrowingPlatingArea()
        : DesktopPlugin("Plating_Area")
    {
    }

    void recMsgFromManager(PluginMetaData) override { throw std::runtime_error("the bath is dry"); }
};

#include "throwing_Plating_Area.moc"
