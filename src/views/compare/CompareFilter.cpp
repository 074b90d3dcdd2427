// SPDX-License-Identifier: MIT
#include "views/compare/CompareFilter.h"

#include "document/XsdtNode.h"

namespace kse {

namespace {

bool holdsText(const CompareEntry& entry, const QString& text)
{
    const auto valueHolds = [&text](const XsdtNode* node) {
        return node && node->value.contains(text, Qt::CaseInsensitive);
    };
    return text.isEmpty() || entry.path.contains(text, Qt::CaseInsensitive) ||
           valueHolds(entry.thisNode) || valueHolds(entry.otherNode);
}

} // namespace

CompareListing filtered(const QList<CompareEntry>& entries, const std::vector<bool>& isNoise,
                        const CompareFilter& filter)
{
    CompareListing listing;
    for (int i = 0; i < entries.size(); ++i) {
        if (filter.hidesNoise && isNoise[size_t(i)]) {
            ++listing.hidden;
            continue;
        }
        const CompareEntry& entry = entries.at(i);
        const auto state = static_cast<size_t>(entry.state);
        ++listing.counts[state];
        if (filter.showsState[state] && holdsText(entry, filter.text)) {
            listing.shown.append(i);
        }
    }
    return listing;
}

} // namespace kse
