#pragma once

#include <QtCore/QtGlobal>

/// The codes that the manager knows or sends; all others pass through unexamined.
namespace PluginMangerInternal::MessageType {

constexpr qint32 invalid = -1;
constexpr qint32 quiet = 10000000;
constexpr qint32 frameOpened = 20001638;
constexpr qint32 jobRenamed = 20002400;
constexpr qint32 matrixRenamed = 20002401;
constexpr qint32 frameClosed = 20002402;
constexpr qint32 guideOpened = 20003913;
constexpr qint32 dfmFrameOpened = 20004616;

struct Name
{
    qint32 type;
    const char *name;
};

/// What programs that show messages call them.
inline constexpr Name names[] = {
    {invalid, "invalid"},
    {quiet, "quiet"},
    {frameOpened, "frame opened"},
    {jobRenamed, "job renamed"},
    {matrixRenamed, "matrix renamed"},
    {frameClosed, "frame closed"},
    {guideOpened, "guide opened"},
    {dfmFrameOpened, "DFM frame opened"},
};

}
