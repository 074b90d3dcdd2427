// SPDX-License-Identifier: MIT
#include "views/cleanup/CleanupOffer.h"

#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// A short name for the entry that holds a window's position.
QString displayName(const XsdtNode& node)
{
    QStringList parts = node.path().split(u'/', Qt::SkipEmptyParts);
    parts.removeAll("ModuleData"_L1);
    parts.removeAll("Interfaces"_L1);
    if (!parts.isEmpty() && parts.last() == "Geometry"_L1) {
        parts.removeLast();
    }
    return parts.join(u" › "_s);
}

CleanupOffer wholeGroup(const XsdtDocument& document, const DeletePolicy& policy,
                        const CleanupGroup& group)
{
    CleanupOffer offer;
    QStringList found;
    for (const QString& path : group.paths) {
        XsdtNode* node = document.root.findByPath(path);
        if (node && policy.decide(node).level == DeleteLevel::Safe) {
            offer.nodes.append({node->path(), node});
            found.append(path);
        }
    }
    offer.explanation = group.description + u'\n' + found.join(", "_L1);
    return offer;
}

CleanupOffer eachMatch(const XsdtDocument& document, const DeletePolicy& policy,
                       const CleanupGroup& group)
{
    CleanupOffer offer;
    for (const QString& pattern : group.paths) {
        const QList<XsdtNode*> matches = DeletePolicy::matchPattern(document, pattern);
        for (XsdtNode* node : matches) {
            if (policy.decide(node).level == DeleteLevel::Safe) {
                offer.nodes.append({displayName(*node), node});
            }
        }
    }
    offer.nodes = sortedByName(offer.nodes);
    offer.explanation = group.description;
    return offer;
}

} // namespace

QList<CleanupOffer> cleanupOffers(const XsdtDocument& document, const DeletePolicy& policy)
{
    QList<CleanupOffer> offers;
    for (const CleanupGroup& group : policy.cleanupGroups()) {
        CleanupOffer offer =
            group.each ? eachMatch(document, policy, group) : wholeGroup(document, policy, group);
        if (!offer.nodes.isEmpty()) {
            offer.title = group.title;
            offer.isEach = group.each;
            offers.append(offer);
        }
    }
    return offers;
}

} // namespace kse
