#include "ManagerMessages.h"

#include "messages.h"

#include <algorithm>

namespace {

QString libraryOf(FrameKind kind)
{
    switch (kind) {
    case FrameKind::Matrix:
        return QStringLiteral("ORVIK-Matrix.dll");
    case FrameKind::Guide:
        return QStringLiteral("Graphic_CamGuide.dll");
    default:
        return QStringLiteral("ORVIK-GraphicEditor.dll");
    }
}

/// The matrix goes first, and the guide last.
int rank(const Frame *frame)
{
    return frame->kind == FrameKind::Matrix ? 0 : frame->kind == FrameKind::Guide ? 2 : 1;
}

}

QVector<ManagerMessage> ManagerMessages::whenOpened(const Frame &frame)
{
    const QString library = libraryOf(frame.kind);
    switch (frame.kind) {
    case FrameKind::Matrix:
        return {{library, MessageType::FrameOpened, {{"JobName", frame.job}}}};
    case FrameKind::Guide:
        return {{library, MessageType::GuideOpened, {{"JobName", frame.job + QStringLiteral("|Guide")}}}};
    case FrameKind::Dfm:
        return {{library, MessageType::DfmFrameOpened, {}}};
    case FrameKind::Preview:
        return {{library, MessageType::FrameOpened, {{"JobName", frame.job}, {"Step", frame.step}}}};
    default:
        return {{library,
                 MessageType::FrameOpened,
                 {{"JobName", frame.job}, {"Step", frame.step}, {"IsCamAssistant", "false"}}}};
    }
}

QVector<ManagerMessage> ManagerMessages::whenClosed(const QList<Frame *> &frames)
{
    QList<Frame *> sorted = frames;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Frame *left, const Frame *right) { return rank(left) < rank(right); });
    QVector<ManagerMessage> messages;
    for (const Frame *const frame : qAsConst(sorted))
        messages.append({libraryOf(frame->kind), MessageType::FrameClosed, {}});
    return messages;
}

QVector<ManagerMessage> ManagerMessages::whenJobRenamed(const QString &oldName, const QString &newName)
{
    const QMap<QString, QVariant> names{{"OldJobName", oldName}, {"NewJobName", newName}};
    return {
        {"ORVIK-Matrix.dll", MessageType::MatrixJobRenamed, {{"DstType", "Matrix"}, {"NewJobName", newName}}},
        {"Matrix.dll", MessageType::MatrixJobRenamed, {{"NewJobName", newName}}},
        {"Graphic_JobList.dll", MessageType::JobRenamed, names},
        {"Graphic_CamGuide.dll", MessageType::JobRenamed, names}};
}
