#pragma once

#include "registerRecord.h"

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
 * texts are compared byte for byte. Look-ups return a copy, the empty record when nothing matches, and
 * collections are copies in list order: neither changes when the list does.
 */
class Registry
{
public:
    explicit Registry(std::vector<RegisterRecord> &records);

    RegisterRecord findRecord(const std::string &name, const void *parent) const;
    RegisterRecord findRecordByObject(const void *object) const;
    RegisterRecord findRootRecord() const;
    RegisterRecord findFrame(const std::string &kind, const std::string &name) const;
    RegisterRecord findGraphicFrameByKey(const std::string &key) const;

    std::vector<RegisterRecord> collectFrames(const std::string &kind) const;
    std::vector<RegisterRecord> collectChildren(const void *parent) const;
    /// The children that are elements and whose name equals, or contains, a text.
    std::vector<RegisterRecord> collectElementsNamed(const void *parent, const std::string &name) const;
    std::vector<RegisterRecord> collectElementsContaining(const void *parent, const std::string &text) const;

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
