#pragma once

#include <QtCore/QByteArray>

#include <iterator>
#include <utility>

/// Choices taken from bytes, one byte each. After the last byte each choice is the first possibility.
class Choices
{
public:
    explicit Choices(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }

    bool atEnd() const { return m_position >= m_bytes.size(); }

    /// Returns a number below `bound`.
    int below(int bound) { return atEnd() ? 0 : int(quint8(m_bytes.at(m_position++))) % bound; }

    /// True once in `rarity` times.
    bool oneIn(int rarity) { return below(rarity) == rarity - 1; }

    template <typename Possibilities>
    const auto &of(const Possibilities &possibilities)
    {
        return *std::next(std::begin(possibilities), below(int(std::size(possibilities))));
    }

    /// Returns the next `count` bytes, or what is left.
    QByteArray take(int count)
    {
        const QByteArray taken = m_bytes.mid(m_position, count);
        m_position += taken.size();
        return taken;
    }

private:
    QByteArray m_bytes;
    int m_position = 0;
};
