#include "registrymodel.h"

RegisterRecord RegistryModel::find(const std::string &name, void *parent) const
{
    return first(
        [&](const RegisterRecord &record) { return record.name == name && record.parent == parent; });
}

RegisterRecord RegistryModel::findByObject(void *object) const
{
    return first([&](const RegisterRecord &record) { return record.object == object; });
}

RegisterRecord RegistryModel::findRoot() const
{
    return first([&](const RegisterRecord &record) { return record.type == "EngineerRoot"; });
}

RegisterRecord RegistryModel::findFrame(const std::string &kind, const std::string &name) const
{
    return first([&](const RegisterRecord &record) { return record.type == kind && record.name == name; });
}

RegisterRecord RegistryModel::findGraphicByKey(const std::string &key) const
{
    return first([&](const RegisterRecord &record) { return record.type == "Graphic" && record.key == key; });
}

std::vector<RegisterRecord> RegistryModel::frames(const std::string &kind) const
{
    return all([&](const RegisterRecord &record) { return record.type == kind; });
}

std::vector<RegisterRecord> RegistryModel::childrenOf(void *parent) const
{
    return all([&](const RegisterRecord &record) { return record.parent == parent; });
}

void RegistryModel::append(const RegisterRecord &record)
{
    records.push_back(record);
}

void RegistryModel::eraseGraphicByName(const std::string &name)
{
    keepUnless([&](const RegisterRecord &record) { return record.type == "Graphic" && record.name == name; });
}

void RegistryModel::eraseGraphicByKey(const std::string &key)
{
    keepUnless([&](const RegisterRecord &record) { return record.type == "Graphic" && record.key == key; });
}

void RegistryModel::eraseFirst(const std::string &name, void *parent)
{
    bool erased = false;
    keepUnless([&](const RegisterRecord &record) {
        const bool erases = !erased && record.name == name && record.parent == parent;
        erased = erased || erases;
        return erases;
    });
}

void RegistryModel::removeRecordsOf(void *object)
{
    keepUnless(
        [&](const RegisterRecord &record) { return record.object == object || record.parent == object; });
}

void RegistryModel::rename(const std::string &kind, const std::string &oldName, const std::string &newName)
{
    if (oldName == newName)
        return;
    for (RegisterRecord &record : records) {
        if (kind == "Graphic" && record.type == "Graphic" && record.name == oldName)
            record.name = newName;
        if (kind == "Matrix" && record.type == "Matrix" && record.name == oldName)
            record.name = newName;
        if (kind == "Matrix" && record.type == "Graphic"
            && record.name.find(oldName + " | ") != std::string::npos)
            record.name = newName + record.name.substr(oldName.size());
        if (kind == "Guide" && record.type == "Guide" && record.name == oldName + "|Guide")
            record.name = newName + "|Guide";
    }
}

RegisterRecord RegistryModel::first(const Test &test) const
{
    for (const RegisterRecord &record : records) {
        if (test(record))
            return record;
    }
    return {};
}

std::vector<RegisterRecord> RegistryModel::all(const Test &test) const
{
    std::vector<RegisterRecord> found;
    for (const RegisterRecord &record : records) {
        if (test(record))
            found.push_back(record);
    }
    return found;
}

void RegistryModel::keepUnless(const Test &test)
{
    std::vector<RegisterRecord> kept;
    for (const RegisterRecord &record : records) {
        if (!test(record))
            kept.push_back(record);
    }
    records = kept;
}
