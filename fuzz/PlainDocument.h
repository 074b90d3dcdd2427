// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace kse {

/// One element of a settings file.
struct PlainRow
{
    int parent = -1; ///< Place of its group in the list; -1 at the top.
    bool isValue = false;
    QString key;
    QChar type;
    QString value;
    QString original;
    bool textForm = false;
    bool selfClosing = false;
    bool marked = false;
};

/// A settings file the obvious way: the elements in a list, in file order. It says what
/// `XsdtDocument` has to agree with, and shares no code with it.
struct PlainDocument
{
    QString head;
    QString tail;
    std::vector<PlainRow> rows;

    /// Reads the forms told in `XsdtReader.h`, step by step and one character at a time.
    [[nodiscard]] bool read(const QByteArray& bytes, QString& error);

    /// The file's bytes in the compact layout, without what a mark covers.
    [[nodiscard]] QByteArray bytes() const;

    /// For each row whether it or a group that it lies in is marked.
    [[nodiscard]] std::vector<bool> covered() const;

    /// Places of the modified values that no mark covers, and of the topmost marks.
    [[nodiscard]] std::vector<std::size_t> editedValues() const;
    [[nodiscard]] std::vector<std::size_t> deletions() const;

    void revertAll();
    void commitEdits();
};

} // namespace kse
