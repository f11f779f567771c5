#pragma once

#include <PluginMetaData.h>

/**
 * The message types that the example plug-ins understand, and the named parameters of each.
 *
 * Every element shows the text of a ShowText message. The others concern the elements named beside them
 * and are ignored elsewhere.
 */
enum MessageType : qint32 {
    ShowText = 1,     ///< "Text"
    RunCommand = 2,   ///< "Command": a graphic view's zoomIn, zoomOut, fit, moveLeft, ...
    ShowPosition = 3, ///< "X", "Y" in millimetres: the coordinate row
    SelectLayer = 4,  ///< "Layer", empty for none: graphic view, layer matrix
    SelectPart = 5,   ///< "Part": the views of part numbers
    SelectStep = 6,   ///< "Step": the job list
    ShowProgress = 7, ///< "Percent": the progress dialog
};

/// The named parameter of a message; an invalid value when it has none.
inline QVariant parameter(const PluginMetaData &message, const char *name)
{
    return message.data.value(QLatin1String(name));
}
