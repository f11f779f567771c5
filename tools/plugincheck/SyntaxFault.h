#pragma once

#include <QtCore/QByteArray>

namespace PluginCheck {

/// What is wrong at the first place at which a text can be no JSON.
enum class Fault {
    EndsEarly,
    CommaBeforeEnd,
    CommaTooMany,
    CommaMissing,
    ColonMissing,
    TextWithoutEnd,
    SingleQuote,
    Comment,
    WrongEnd,
    MoreAfterEnd,
    KeyExpected,
    NoBeginning,
    Other
};

struct SyntaxFault
{
    Fault fault;
    int offset;
};

/**
 * Finds the first fault in the order of a JSON text, at the very byte, which QJsonDocument does not tell: its
 * place is behind what it has read, and the blanks after that.
 *
 * What only QJsonDocument knows to be wrong, such as an escape in a text, is `Other`, at `known`.
 */
SyntaxFault syntaxFaultIn(const QByteArray &text, int known);

}
