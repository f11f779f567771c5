#pragma once

#include "LibraryFile.h"

#include <QtCore/QIODevice>

#include <optional>

namespace PluginCheck {

/**
 * Reads the headers of a file: format, machine, and whether the file is as long as they promise.
 *
 * All that is read is checked against the file's length first. What is found here is what a reader of more of
 * the file may rely on.
 */
class LibraryHeader
{
public:
    explicit LibraryHeader(const QByteArray &content);

    /// Fills in format, machine and problem.
    void describe(LibraryFile &file) const;

    /// Returns the content with all taken out that nobody here asks for, so that nobody stumbles over it.
    std::vector<uint8_t> reduced() const;

    /// Returns what lies in a section of an ELF file; nothing if there is no such section.
    QByteArray section(const char *name) const;

    /// Returns what is at an address when the library is loaded, as far as the file has it, up to a length.
    QByteArray contentAt(quint64 address, quint64 length) const;

    /// Whether a PE file has code at an address, or the name of a function of another library.
    bool isFunction(quint64 address) const;

    /// Returns the name of the library and the function that a PE file has at an address in the place of a
    /// function; nothing if there is none.
    QByteArray forwardAt(quint64 address) const;

    /// Returns where all ends that is loaded of an ELF file, the headers included.
    quint64 endOfLoaded() const;

    /// Returns the content of an ELF file up to there, with the table of sections put behind it.
    QByteArray withSections(QIODevice &file) const;

    /// Whether an ELF file has a table of sections with one of dynamic symbols, and both lie in the file.
    bool hasSections() const;

private:
    template <typename Number>
    quint64 at(quint64 position) const;
    quint64 word(quint64 position32, quint64 position64) const;
    QByteArray bytes(quint64 begin, quint64 length) const;
    quint64 dynamicFlags() const;
    void describeIdentity(LibraryFile &file) const;
    bool isForOwnSystem() const;
    bool areSegmentsInPlace() const;
    void describeElf(LibraryFile &file) const;
    void describePe(LibraryFile &file) const;
    void reduceElf(std::vector<uint8_t> &bytes) const;
    void reduceDynamic(std::vector<uint8_t> &bytes, quint64 begin, quint64 length) const;
    void reducePe(std::vector<uint8_t> &bytes) const;
    void putWord(QByteArray &bytes, int position, quint64 value) const;
    bool isAmongExports(quint64 address) const;
    bool isPe() const { return m_content.startsWith("MZ"); }
    bool isWide() const { return m_isWide; }

    const QByteArray m_content;
    bool m_isWide = true;
    bool m_isBigEndian = false;
};

/// Returns what there is to know of a library's file, and of another file its beginning. Most of a large
/// library is for debuggers, lies behind all that is loaded, and is not read. Returns nothing if more than so
/// many bytes are left.
std::optional<QByteArray> relevantContent(QIODevice &file, qint64 most);

}
