// SPDX-License-Identifier: MIT
#pragma once

#include "document/NamedNode.h"

#include <QList>
#include <QString>

namespace kse {

class DeletePolicy;
struct XsdtDocument;

/// One of the policy's cleanup groups, with what a document holds of it.
struct CleanupOffer
{
    QString title;
    QString explanation;    ///< For the tool tip.
    bool isEach = false;    ///< Every node is offered by itself, instead of all as one entry.
    QList<NamedNode> nodes; ///< The document's, never empty; sorted by name if `isEach`.
};

/// The groups of which `document` holds something that is safe to delete, in the policy's order.
[[nodiscard]] QList<CleanupOffer> cleanupOffers(const XsdtDocument& document,
                                                const DeletePolicy& policy);

} // namespace kse
