#pragma once

#include <PluginMetaData.h>

#include <QtCore/QVariant>

/**
 * The message types that the example host and its plug-ins understand, the named parameters of each, and who
 * understands it. Elements ignore what they do not know. examples/README.md has the same list with who sends
 * what to whom, and the host's message view the names for those who read along.
 */
enum MessageType : qint32 {
    ShowText = 1,     ///< "Text": every element and frame
    RunCommand = 2,   ///< "Command": the graphic view, the matrix, the rule check, desktop plug-ins
    SelectLayer = 3,  ///< "Layer", empty for none: the graphic view
    LayerShown = 4,   ///< "Step", "Layer", "Features": the layer matrix, in answer to SelectLayer
    SelectPart = 5,   ///< "Part", "File": the views of part numbers
    SelectStep = 6,   ///< "JobName", "Step": the graphic frame
    ShowProgress = 7, ///< "Percent", "Text": the progress displays
    FilterParts = 8,  ///< "Filter": the list of part numbers
    CenterOn = 9,     ///< "Position" in millimetres: the graphic view
    OpenStep = 10,    ///< "JobName", "Step", "File": every element that shows what is in a step
    RenameStep = 11,  ///< "OldStepName", "ChangeStepName": view, job list, matrix, rule check, graphic frame
    ShowSteps = 12,   ///< "Steps", those that are open: job list, layer matrix
    ShowCompareJob = 13, ///< "CompareJob", "File", empty for none: the graphic view
    ShowKeys = 14,       ///< "Keys": the graphic frame
    TaskDone = 15,       ///< "Task", "Text": the guide
    AskForPoints = 16,   ///< the desktop's view, which answers the sender with ShowPoints
    ShowPoints = 17,     ///< "Points" in millimetres: the desktop's view and files
    UseFolder = 18,      ///< "Folder": the lists of part numbers, the desktop's files
    AreaCounted = 19,    ///< "Part", "Layer", "Area" in millimetres: the desktop's view
    ShowLayer = 20,      ///< "Layer", "Visible": the graphic view
    LayersShown = 21,    ///< "Layers", those that are visible: the job list
    ShowFindings = 22,   ///< "Findings", a list of positions in millimetres: the graphic view
    UseUnit = 23,        ///< "Unit", mm or inch: the graphic frame, which passes it to the coordinate row
    ShowJob = 24,        ///< "JobName", "Part": the information in the menu bar
    PartsListed = 25,    ///< "Count", "Total": the filter, in answer to FilterParts and UseFolder

    /// Follows every move of the mouse, so it has the type that the manager does not log. The graphic view
    /// sends its "Position" in millimetres to the coordinate row, its visible "Area" to the mini map; the
    /// desktop's view sends the "Position" to the status display.
    FollowView = 10000000,

    // These are the manager's own.
    FrameOpened = 20001638,      ///< "JobName", "Step": graphic and matrix frame
    JobRenamed = 20002400,       ///< "OldJobName", "NewJobName": job list, guide; the host sends it to others
    MatrixJobRenamed = 20002401, ///< "NewJobName": matrix frame and what is in it
    FrameClosed = 20002402,      ///< every frame
    GuideOpened = 20003913,      ///< "JobName"
    DfmFrameOpened = 20004616,   ///< the DFM frame
};

/// The named parameter of a message; an invalid value when it has none.
inline QVariant parameter(const PluginMetaData &message, const char *name)
{
    return message.data.value(QLatin1String(name));
}

inline QString textParameter(const PluginMetaData &message, const char *name)
{
    return parameter(message, name).toString();
}

/// A message from one plug-in to another. CAM plug-ins are named by their file names, desktop plug-ins
/// without ".dll".
inline PluginMetaData makeMessage(const QString &source, const QString &destination, qint32 type,
                                  const QMap<QString, QVariant> &data)
{
    PluginMetaData message;
    message.src = source;
    message.dst = destination;
    message.type = type;
    message.data = data;
    return message;
}
