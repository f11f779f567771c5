#pragma once

#include <string>
#include <utility>

/**
 * One entry of the CAM manager's registry: an element, a frame or the engineering root.
 *
 * A plain value. It owns neither `object` nor `parent`; both belong to the host's widget tree.
 */
struct RegisterRecord
{
    /// Makes the empty record, the answer of every lookup that found nothing.
    RegisterRecord() = default;

    /// Makes a record with an empty `key`.
    RegisterRecord(std::string recordType, std::string recordName, void *recordObject, void *recordParent)
        : type(std::move(recordType))
        , name(std::move(recordName))
        , object(recordObject)
        , parent(recordParent)
    {
    }

    /// True when `type` is empty, whatever the other fields hold: nothing was found.
    bool isEmpty() const { return type.empty(); }

    /// The kind: "Plugin", "Graphic", "Matrix", "Guide" or "EngineerRoot".
    std::string type;

    /// What the record is found by: the library file name of a plug-in's element, the job name of a
    /// matrix or guide frame, job + " | " + step of a graphic frame.
    std::string name;

    /// A second text to find a graphic frame by; empty for all other records.
    std::string key;

    /// The element, frame or root itself.
    void *object = nullptr;

    /// The widget that an element was made for, or the root that a frame belongs to.
    void *parent = nullptr;
};
