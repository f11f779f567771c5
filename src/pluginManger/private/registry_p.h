#pragma once

#include "registerRecord.h"

#include "nameText_p.h"

#include <QtCore/QVarLengthArray>

#include <string>
#include <vector>

namespace PluginMangerInternal {

/// The kinds of record, as they stand in RegisterRecord::type.
namespace RecordKind {
inline constexpr char plugin[] = "Plugin";
inline constexpr char graphic[] = "Graphic";
inline constexpr char matrix[] = "Matrix";
inline constexpr char guide[] = "Guide";
inline constexpr char engineerRoot[] = "EngineerRoot";
}

/**
 * The rules by which the CAM manager finds, collects, erases and renames the records of its registry.
 *
 * Works on a list that it is given and does not own. Scans go from the front and the first match wins;
 * names are compared byte for byte, and as texts where a text is given. Look-ups return a record of the list,
 * or the empty record when nothing matches; the reference holds until the list changes, so who needs it
 * longer copies it. Collections are copies in list order, and do not change when the list does.
 */
class Registry
{
public:
    /// Room for as many as a message usually goes to, so that a delivery allocates none.
    using Objects = QVarLengthArray<void *, 16>;

    explicit Registry(std::vector<RegisterRecord> &records);

    const RegisterRecord &findRecord(const std::string &name, const void *parent) const;
    const RegisterRecord &findRecordByObject(const void *object) const;
    const RegisterRecord &findRootRecord() const;
    const RegisterRecord &findFrame(const std::string &kind, const std::string &name) const;
    const RegisterRecord &findGraphicFrameByKey(const std::string &key) const;

    std::vector<RegisterRecord> collectFrames(const std::string &kind) const;
    std::vector<RegisterRecord> collectChildren(const void *parent) const;
    /// The objects of the children that are elements and whose name equals, or contains, a text.
    Objects collectElementsNamed(const void *parent, const NameText &name) const;
    Objects collectElementsContaining(const void *parent, const NameText &text) const;

    void appendRecord(const RegisterRecord &record);

    void eraseGraphicFramesByName(const std::string &name);
    void eraseGraphicFramesByKey(const std::string &key);
    /// Erases the first record of that name and parent, and no other.
    void eraseRecord(const std::string &name, const void *parent);
    /// Removes what `object` points to together with its direct children.
    void removeRecordsOf(const void *object);

    /**
     * Gives the frames of a job, or of a step, a new name.
     *
     * "Graphic" renames frames of exactly `oldName`. "Matrix" also gives the graphic frames of that job
     * its new name. "Guide" renames frames of `oldName` + "|Guide". Other kinds have no frames.
     */
    void renameFrames(const std::string &kind, const std::string &oldName, const std::string &newName);

private:
    std::vector<RegisterRecord> &m_records;
};

}
