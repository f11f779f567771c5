#pragma once

#include <vector>

/// A signal of one library's element and the slot of another's that it leads to.
struct Connection
{
    const char *sender;
    const char *signal;
    const char *receiver;
    const char *slot;
};

/// What the host connects once the elements are there.
std::vector<Connection> connections();
