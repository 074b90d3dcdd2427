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

CleanupOffer offerFor(const CleanupGroup& group, const XsdtDocument& document,
                      const DeletePolicy& policy)
{
    CleanupOffer offer;
    offer.title = group.title;
    offer.explanation = group.description;
    offer.isEach = group.each;
    QStringList found;
    for (const QString& path : group.paths) {
        const QList<XsdtNode*> nodes = group.each ? DeletePolicy::matchPattern(document, path)
                                                  : QList{document.root.findByPath(path)};
        for (XsdtNode* node : nodes) {
            if (node && policy.decide(node).level == DeleteLevel::Safe) {
                offer.nodes.append({group.each ? displayName(*node) : node->path(), node});
                found.append(path);
            }
        }
    }
    if (group.each) {
        offer.nodes = sortedByName(offer.nodes);
    } else {
        offer.explanation += u'\n' + found.join(", "_L1);
    }
    return offer;
}

} // namespace

QList<CleanupOffer> cleanupOffers(const XsdtDocument& document, const DeletePolicy& policy)
{
    QList<CleanupOffer> offers;
    for (const CleanupGroup& group : policy.cleanupGroups()) {
        const CleanupOffer offer = offerFor(group, document, policy);
        if (!offer.nodes.isEmpty()) {
            offers.append(offer);
        }
    }
    return offers;
}

} // namespace kse
