#pragma once

#include <QtCore/QString>

/**
 * What can be said about a library's file without loading it.
 *
 * The system maps a library into memory by what its headers promise. A file that is shorter than that, as a
 * copy that was cut off is, ends the process when the missing part is touched, so it must not be loaded.
 * Tables at the end, which only debuggers read, count as well: without them, too, it is not the file that was
 * released.
 */
namespace LibraryFile {
/// What is wrong with the file, or nothing. Knows ELF and PE files.
QString damage(const QString &path);
}
