#pragma once

#include "Registrations.h"

#include <QtCore/QVector>

class Account;
class Post;

/// An element that a frame has got, and where in the frame it goes.
struct Element
{
    QString library;
    QObject *object;
    Place place;
};

/// Registers elements, each twice to see that it is made once, and counts them for the account.
class Elements
{
public:
    explicit Elements(Post &post);

    /// Everything that there is for this kind of frame, which becomes its parent.
    QVector<Element> registerFor(FrameKind kind, QWidget *frame, const QString &job);

    int count() const;
    bool areMadeOnce() const;
    void tell(Account &account) const;

private:
    struct Tally
    {
        ElementRegistration registration;
        int frames = 0;
        int made = 0;
        int madeOnce = 0;

        bool isGood() const { return frames > 0 && madeOnce == frames; }
    };

    Post &m_post;
    std::vector<Tally> m_tallies;
};
