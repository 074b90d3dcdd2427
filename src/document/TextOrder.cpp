// SPDX-License-Identifier: MIT
#include "document/TextOrder.h"

#include <algorithm>
#include <vector>

namespace kse {

namespace {

struct Item
{
    QStringView text;
    qsizetype place;
    qsizetype shared; ///< How many units it shares at its start with the item before it.
};

/// The value of the unit at `i` in a comparison without case. As in `QString::compare`, the second
/// half of a surrogate pair stands for the whole character.
char32_t weight(QStringView text, qsizetype i)
{
    const QChar unit = text[i];
    if (unit.unicode() < 0x80) {
        return unit >= u'A' && unit <= u'Z' ? unit.unicode() + 0x20U : unit.unicode();
    }
    if (unit.isLowSurrogate() && i > 0 && text[i - 1].isHighSurrogate()) {
        return QChar::toCaseFolded(QChar::surrogateToUcs4(text[i - 1], unit));
    }
    return QChar::toCaseFolded(char32_t(unit.unicode()));
}

/// How many units `a` and `b` share at their start. The first `known` of them are not compared.
qsizetype sharedUnits(QStringView a, QStringView b, qsizetype known)
{
    const qsizetype size = std::min(a.size(), b.size());
    qsizetype i = known;
    while (i < size && (a[i] == b[i] || weight(a, i) == weight(b, i))) {
        ++i;
    }
    return i;
}

/// Whether `a` comes before `b`. They share exactly `shared` units.
bool isBefore(QStringView a, QStringView b, qsizetype shared)
{
    if (shared == a.size() || shared == b.size()) {
        return a.size() < b.size();
    }
    return weight(a, shared) < weight(b, shared);
}

/// Merges the sorted halves `left` and `right` into `out`. The right half lies at the end of the
/// range that begins at `out`. Of two candidates, the one that shares more with the last item in
/// `out` comes first. Only if both share the same number of units are their texts compared, from
/// there on.
void merge(Item* left, Item* leftEnd, Item* right, Item* rightEnd, Item* out)
{
    while (left != leftEnd && right != rightEnd) {
        bool takeLeft = left->shared > right->shared;
        if (left->shared == right->shared) {
            const qsizetype shared = sharedUnits(left->text, right->text, left->shared);
            takeLeft = !isBefore(right->text, left->text, shared);
            (takeLeft ? right : left)->shared = shared;
        }
        *out++ = takeLeft ? *left++ : *right++;
    }
    std::copy(left, leftEnd, out);
}

/// Sorts from `first` to before `last`. `room` has space for half of them.
// NOLINTNEXTLINE(misc-no-recursion): each step halves the texts.
void sort(Item* first, Item* last, Item* room)
{
    if (last - first < 2) {
        return;
    }
    Item* const middle = first + (last - first) / 2;
    sort(first, middle, room);
    sort(middle, last, room);
    const QStringView lastOfLeft = (middle - 1)->text;
    middle->shared = sharedUnits(lastOfLeft, middle->text, 0);
    if (isBefore(middle->text, lastOfLeft, middle->shared)) {
        middle->shared = 0; // `out` is still empty
        merge(room, std::copy(first, middle, room), middle, last, first);
    }
}

} // namespace

QList<qsizetype> orderIgnoringCase(const QList<QStringView>& texts)
{
    std::vector<Item> items;
    items.reserve(static_cast<size_t>(texts.size()));
    for (const QStringView text : texts) {
        items.push_back({text, static_cast<qsizetype>(items.size()), 0});
    }
    std::vector<Item> room(items.size() / 2);
    sort(items.data(), items.data() + items.size(), room.data());

    QList<qsizetype> places;
    places.reserve(texts.size());
    for (const Item& item : items) {
        places.append(item.place);
    }
    return places;
}

} // namespace kse
