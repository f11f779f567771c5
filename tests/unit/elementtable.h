#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

class QWidget;

/// One of the operations that register an element.
struct ElementRow
{
    QByteArray operation;
    QString library;
    QString symbol;
    /// The class of the element returned.
    QByteArray element;
    /// Whether the factory is given a text.
    bool takesText;
    std::function<void *(QWidget *parent, const std::string &text)> call;
};

/// All 35 of them.
QList<ElementRow> elementTable();
