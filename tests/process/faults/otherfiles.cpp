// The rows that only Linux has.

#include "faults.h"

Rows systemRows()
{
    Rows rows;
    for (const char *name : {"truncated at every 64 bytes",
                             "truncated behind its last segment",
                             "truncated, found by bare name",
                             "truncated, behind one for another machine",
                             "truncated for another machine, before a whole one",
                             "truncated, under each name that QLibrary asks for: bare",
                             "truncated, under each name that QLibrary asks for: with \"lib\"",
                             "truncated, under each name that QLibrary asks for: relative",
                             "truncated, under each name that QLibrary asks for: absolute",
                             "truncated, under each name that QLibrary asks for: hidden",
                             "truncated, behind the start of one for another machine",
                             "truncated, where a link led to before",
                             "truncated, its name followed by a NUL",
                             "truncated, behind a text of another name",
                             "truncated, relative path",
                             "truncated Qt plug-in, every 64 bytes",
                             "truncated Qt plug-in that still describes itself",
                             "truncated Qt plug-in, found by bare name",
                             "truncated Qt plug-in in a relative library path",
                             "truncated while another owner has it loaded",
                             "truncated while the system's loader has it",
                             "truncated Qt plug-in while the system's loader has it",
                             "segment without content beyond the file",
                             "segment that is not mapped, beyond the file",
                             "segment beyond 2^64",
                             "table of segments beyond 2^64",
                             "wrong machine",
                             "32-bit",
                             "truncated needed library"})
        rows.push_back({name, {}, {}, {}, "made of Linux' kind of library; here the system checks its own"});
    for (const char *name : {"dangling link", "link loop", "FIFO", "FIFO in place of a Qt plug-in",
                             "configuration: FIFO", "terminal", "/dev/null", "unreadable"})
        rows.push_back({name, {}, {}, {}, "there are no such files here"});
    rows.push_back(
        {"truncated in place while loaded", {}, {}, {}, "the file of a loaded library is locked here"});
    rows.push_back({"name longer than any path", {}, {}, {}, "it is not kept on a stack here"});
    rows.push_back({"message that is sent on without end",
                    {},
                    {},
                    {},
                    "there are no signals here; how a process crashes is the system's"});
    return rows;
}
