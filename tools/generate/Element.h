// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <list>

namespace kse {

/// A group or a value of a settings file to be written. All texts are UTF-8.
struct Element
{
    QByteArray key;
    char type = 0; ///< Type code of a value; 0 in a group.
    QByteArray value;
    std::list<Element> children; ///< A list, since callers keep references while they add more.
    bool selfClosing = false;    ///< A group without children is written `<i k="..."/>`.

    /// The group at `path` below this one, its keys separated by "/". Made if it isn't there.
    Element& group(const QByteArray& path);

    /// Sets the value `name` of this group, or adds it.
    void set(const QByteArray& name, char typeCode, const QByteArray& text);

    /// Removes the direct children with this key.
    void remove(const QByteArray& name);

    /// Sorts the children of this and of every group below by the bytes of their keys.
    void sort();
};

/// The start of a file: XML declaration, `comment` unless empty, the root's start tag.
[[nodiscard]] QByteArray settingsHead(const QByteArray& comment);

/// The end of a file.
[[nodiscard]] QByteArray settingsTail();

/// Appends the start tag of a group.
void appendGroupStart(QByteArray& out, const QByteArray& key);

/// Appends a value: text and blocks as element text, all other types as an attribute.
void appendValue(QByteArray& out, const QByteArray& key, char type, const QByteArray& value);

/// Appends `element` with everything that it contains.
void appendElement(QByteArray& out, const Element& element);

} // namespace kse
