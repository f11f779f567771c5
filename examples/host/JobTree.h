#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>

class Post;
class QTpluginsManger4CAM;
struct Frame;
class Workspace;

/// Renames, deletes and compares jobs and steps, and tells everybody who shows them.
class JobTree
{
public:
    JobTree(Post &post, Workspace &workspace);

    /// Whether a job may be opened under this name, or get it.
    bool isFreeJobName(const QString &name) const;
    bool isFreeStepName(const QString &job, const QString &name) const;

    // Names are taken by value: those in a frame change or go with it.
    void renameJob(QString oldName, QString newName);
    void renameStep(QString job, QString oldName, QString newName);
    void deleteJob(QString job);
    void deleteStep(QString job, QString step);

    /// Shows in all graphic frames which job they are compared with; an empty name ends that.
    void compare(const QString &job, const QString &other);
    /// A text in all frames of a job, and in the window.
    void setText(const QString &job, const QString &text);
    /// A text in the graphic frames of a job.
    void setStateText(const QString &job, const QString &text);
    void useUnit(const QString &unit);

private:
    void deleteNode(const char *kind, const QString &name, const QList<Frame *> &frames);
    void tellFrames(const QString &job, qint32 type, QMap<QString, QVariant> data);
    void tell(const char *kind, const QString &job, const char *library, qint32 type,
              QMap<QString, QVariant> data);

    Post &m_post;
    QTpluginsManger4CAM *m_manager;
    Workspace &m_workspace;
};
