#pragma once

#include "registerRecord.h"

#include <functional>
#include <string>
#include <vector>

/// The rules of the registry once more, as plainly as they can be written: what the library's own registry is
/// compared with. It shares nothing with that but the record.
class RegistryModel
{
public:
    RegisterRecord find(const std::string &name, void *parent) const;
    RegisterRecord findByObject(void *object) const;
    RegisterRecord findRoot() const;
    RegisterRecord findFrame(const std::string &kind, const std::string &name) const;
    RegisterRecord findGraphicByKey(const std::string &key) const;

    std::vector<RegisterRecord> frames(const std::string &kind) const;
    std::vector<RegisterRecord> childrenOf(void *parent) const;

    void append(const RegisterRecord &record);
    void eraseGraphicByName(const std::string &name);
    void eraseGraphicByKey(const std::string &key);
    void eraseFirst(const std::string &name, void *parent);
    void removeRecordsOf(void *object);
    void rename(const std::string &kind, const std::string &oldName, const std::string &newName);

    std::vector<RegisterRecord> records;

private:
    using Test = std::function<bool(const RegisterRecord &)>;
    RegisterRecord first(const Test &test) const;
    std::vector<RegisterRecord> all(const Test &test) const;
    void keepUnless(const Test &test);
};
