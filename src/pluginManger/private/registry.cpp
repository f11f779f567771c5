#include "registry_p.h"

#include "frameFactories_p.h"

#include <algorithm>
#include <iterator>

namespace PluginMangerInternal {

namespace {

template <typename Matches>
const RegisterRecord &firstOf(const std::vector<RegisterRecord> &records, Matches matches)
{
    // Never destroyed: hosts look things up until the process has ended.
    static const RegisterRecord &nothing = *new RegisterRecord;
    const auto found = std::find_if(records.begin(), records.end(), matches);
    return found == records.end() ? nothing : *found;
}

template <typename Matches>
std::vector<RegisterRecord> allOf(const std::vector<RegisterRecord> &records, Matches matches)
{
    std::vector<RegisterRecord> found;
    std::copy_if(records.begin(), records.end(), std::back_inserter(found), matches);
    return found;
}

template <typename Matches>
Registry::Objects objectsOf(const std::vector<RegisterRecord> &records, Matches matches)
{
    Registry::Objects objects;
    for (const RegisterRecord &record : records) {
        if (matches(record))
            objects.append(record.object);
    }
    return objects;
}

template <typename Matches>
void eraseAllOf(std::vector<RegisterRecord> &records, Matches matches)
{
    records.erase(std::remove_if(records.begin(), records.end(), matches), records.end());
}

void renameAllOf(std::vector<RegisterRecord> &records, const std::string &kind, const std::string &oldName,
                 const std::string &newName)
{
    for (RegisterRecord &record : records) {
        if (record.type == kind && record.name == oldName)
            record.name = newName;
    }
}

/// Gives the graphic frames of the job `oldJob` its new name. Whatever frame holds the old job's name and
/// the separator anywhere has the start of its name replaced: callers rely on the length, not the place.
void renameJobOfGraphicFrames(std::vector<RegisterRecord> &records, const std::string &oldJob,
                              const std::string &newJob)
{
    const std::string pattern = oldJob + FrameNames::separator;
    for (RegisterRecord &record : records) {
        if (record.type == RecordKind::graphic && record.name.find(pattern) != std::string::npos)
            record.name.replace(0, oldJob.size(), newJob);
    }
}

}

Registry::Registry(std::vector<RegisterRecord> &records)
    : m_records(records)
{
}

const RegisterRecord &Registry::findRecord(const std::string &name, const void *parent) const
{
    return firstOf(m_records, [&](const RegisterRecord &record) {
        return record.parent == parent && record.name == name;
    });
}

const RegisterRecord &Registry::findRecordByObject(const void *object) const
{
    return firstOf(m_records, [&](const RegisterRecord &record) { return record.object == object; });
}

const RegisterRecord &Registry::findRootRecord() const
{
    return firstOf(m_records,
                   [](const RegisterRecord &record) { return record.type == RecordKind::engineerRoot; });
}

const RegisterRecord &Registry::findFrame(const std::string &kind, const std::string &name) const
{
    return firstOf(m_records,
                   [&](const RegisterRecord &record) { return record.type == kind && record.name == name; });
}

const RegisterRecord &Registry::findGraphicFrameByKey(const std::string &key) const
{
    return firstOf(m_records, [&](const RegisterRecord &record) {
        return record.type == RecordKind::graphic && record.key == key;
    });
}

std::vector<RegisterRecord> Registry::collectFrames(const std::string &kind) const
{
    return allOf(m_records, [&](const RegisterRecord &record) { return record.type == kind; });
}

std::vector<RegisterRecord> Registry::collectChildren(const void *parent) const
{
    return allOf(m_records, [&](const RegisterRecord &record) { return record.parent == parent; });
}

Registry::Objects Registry::collectElementsNamed(const void *parent, const NameText &name) const
{
    return objectsOf(m_records, [&](const RegisterRecord &record) {
        return record.parent == parent && record.type == RecordKind::plugin && name.equals(record.name);
    });
}

Registry::Objects Registry::collectElementsContaining(const void *parent, const NameText &text) const
{
    return objectsOf(m_records, [&](const RegisterRecord &record) {
        return record.parent == parent && record.type == RecordKind::plugin && text.isIn(record.name);
    });
}

void Registry::appendRecord(const RegisterRecord &record)
{
    m_records.push_back(record);
}

void Registry::eraseGraphicFramesByName(const std::string &name)
{
    eraseAllOf(m_records, [&](const RegisterRecord &record) {
        return record.type == RecordKind::graphic && record.name == name;
    });
}

void Registry::eraseGraphicFramesByKey(const std::string &key)
{
    eraseAllOf(m_records, [&](const RegisterRecord &record) {
        return record.type == RecordKind::graphic && record.key == key;
    });
}

void Registry::eraseRecord(const std::string &name, const void *parent)
{
    const auto found = std::find_if(m_records.begin(), m_records.end(), [&](const RegisterRecord &record) {
        return record.parent == parent && record.name == name;
    });
    if (found != m_records.end())
        m_records.erase(found);
}

void Registry::removeRecordsOf(const void *object)
{
    eraseAllOf(m_records, [&](const RegisterRecord &record) {
        return record.object == object || record.parent == object;
    });
}

void Registry::renameFrames(const std::string &kind, const std::string &oldName, const std::string &newName)
{
    if (oldName == newName)
        return;
    if (kind == RecordKind::graphic) {
        renameAllOf(m_records, kind, oldName, newName);
    } else if (kind == RecordKind::matrix) {
        renameAllOf(m_records, kind, oldName, newName);
        renameJobOfGraphicFrames(m_records, oldName, newName);
    } else if (kind == RecordKind::guide) {
        renameAllOf(m_records, kind, oldName + FrameNames::guideSuffix, newName + FrameNames::guideSuffix);
    }
}

}
